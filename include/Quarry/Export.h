/// @file
/// Marks what the shared object exports; everything else in it is hidden.
#pragma once

#define QUARRY_API __attribute__((visibility("default")))
