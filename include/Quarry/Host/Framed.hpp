/// @file
/// Records in their envelopes.
#pragma once

#include <cstdint>
#include <type_traits>

#include "Quarry/Operations.h"
#include "Quarry/Quarry.h"

namespace quarry {

namespace detail {

template <class Record, class... Records>
inline constexpr bool kIsAnyOf = (std::is_same_v<Record, Records> || ...);

#define QUARRY_AND_OPTIONS(Name, Factory, Options, ...) , Options
template <class Record>
inline constexpr bool kIsOptions = kIsAnyOf<Record QUARRY_OPERATIONS(QUARRY_AND_OPTIONS)>;
#undef QUARRY_AND_OPTIONS

/// Options and input records begin with a `Header`, result records do not.
template <class Record, class = void>
inline constexpr bool kHasHeader = false;
template <class Record>
inline constexpr bool kHasHeader<Record, std::void_t<decltype(Record::Header)>> = true;

}  // namespace detail

/// The tag of a record's role: options, input or result.
template <class Record>
inline constexpr uint32_t kTagOf = detail::kIsOptions<Record>   ? QUARRY_OPTIONS_TAG
                                   : detail::kHasHeader<Record> ? QUARRY_INPUT_TAG
                                                                : QUARRY_RESULT_TAG;

/// A record in its envelope: length word, record, tag. A copy has its own envelope.
template <class Content>
class Framed {
public:
    explicit Framed(const Content& content = {}, uint32_t tag = kTagOf<Content>)
        : framed{0, static_cast<int32_t>(sizeof(Content)), content, tag} {}

    Content& record() { return framed.Record; }
    const Content& record() const { return framed.Record; }

    /// The record's address as the type that a function of the library takes, such as ProcessData. It is valid as long
    /// as this object.
    template <class Any>
    Any* As() {
        return reinterpret_cast<Any*>(&framed.Record);
    }

private:
    QUARRY_FRAMED(Content) framed;
};

}  // namespace quarry
