/// @file
/// The envelope around every record that crosses the interface.
///
///         -4       0                      L        L + 4
///          | L     | the record, L bytes  | tag    |
///                  ^ the pointer that is passed
///
/// The library reads the length word and the tag before it touches the record, so that a host with another idea of a
/// record is stopped with a MarshalingException instead of corrupting memory. All numbers are little-endian.
///
/// Options and input records begin with a 32-bit `Header` that is the host's to use: the library never reads it.
/// Most result records begin with a 32-bit `Status`, which the library sets to 0 whenever it fills the record. The
/// others begin with eight bytes that the library does not write.
#pragma once

#include <assert.h>
#include <stddef.h>
#include <stdint.h>

/// Tag of an options record: what a factory takes.
#define QUARRY_OPTIONS_TAG 0x0F0F0F0F
/// Tag of an input record: what `Process` and `Update` take.
#define QUARRY_INPUT_TAG 0x10F0F0F0
/// Tag of a result record: what `Process` and `GetUpdateResult` fill and `DisposeResult` takes.
#define QUARRY_RESULT_TAG 0x1FFF0000
/// No record is longer than this many bytes.
#define QUARRY_MAX_RECORD_LENGTH 120

/// The type of a record together with its envelope; pass the address of `Record`.
///
///     QUARRY_FRAMED(VoLInputData) input = {0, sizeof(VoLInputData), {0, frame}, QUARRY_INPUT_TAG};
///     Process(handle, (ProcessData*)&input.Record, ...);
#define QUARRY_FRAMED(RecordType)                              \
    struct {                                                   \
        int32_t Unread; /* puts Record at a multiple of 8 */   \
        int32_t Length; /* sizeof(RecordType) */               \
        RecordType Record;                                     \
        uint32_t Tag; /* one of the three tags, by its role */ \
    }

/// Freezes the length of a record at compile time.
#define QUARRY_LAYOUT_SIZE(RecordType, length) static_assert(sizeof(RecordType) == (length), "layout of " #RecordType)
/// Freezes the place of a record's field at compile time.
#define QUARRY_LAYOUT_FIELD(RecordType, field, offset) \
    static_assert(offsetof(RecordType, field) == (offset), "layout of " #RecordType "." #field)
