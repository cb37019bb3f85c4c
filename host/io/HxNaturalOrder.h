#pragma once

#include <string>

/// Whether a comes before b as a person sorts names: runs of digits count as numbers, so that "slice9"
/// comes before "slice10". A strict total order.
bool hxNaturalLess(const std::string& a, const std::string& b);
