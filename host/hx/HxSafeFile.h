#pragma once

#include "mc/McString.h"

#include <string>

/// Writes a whole file beside its place and renames it, so that a failure leaves an old file as it
/// was. False, with one sentence in `error` that names the file.
bool hxWriteFileSafely(const char* path, const std::string& content, McString& error);
