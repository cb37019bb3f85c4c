#pragma once

#include <cstddef>
#include <string>

/// Bytes that a reader or writer moves between two looks at an interruption: some milliseconds.
constexpr std::size_t kHxBytesPerPoll = std::size_t(16) << 20;

/// throws HxFileError "FILE: interrupted." once the person has asked to stop the running operation
void hxStopIfInterrupted(const std::string& file);
