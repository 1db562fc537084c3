#pragma once

#include "Quarry/Operations.h"
#include "Quarry/Quarry.h"

/// The operations of the table as types, by their public names.
namespace quarry::test::operations {

enum class Kind { Processor, Updater };

#define QUARRY_OPERATION_TYPE(Name, FactoryName, OptionsRecord, InputRecord, ResultRecord, KindOfIt, ...) \
    struct Name {                                                                                         \
        using Options = ::OptionsRecord;                                                                  \
        using Input = ::InputRecord;                                                                      \
        using Result = ::ResultRecord;                                                                    \
        static constexpr auto kFactory = ::FactoryName;                                                   \
        static constexpr const char* kName = #Name;                                                       \
        static constexpr bool kIsUpdater = Kind::KindOfIt == Kind::Updater;                               \
    };
QUARRY_OPERATIONS(QUARRY_OPERATION_TYPE)
#undef QUARRY_OPERATION_TYPE

}  // namespace quarry::test::operations
