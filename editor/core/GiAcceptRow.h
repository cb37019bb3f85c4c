#pragma once

#include <cstdint>

// Acceptance of a row of elements, first as one byte each (255 accepted, 0 refused), then packed
// into bits. All loops are written for the vectoriser. T is one of the seven image element types.

/// accepted[i] = 255 if min <= values[i] <= max, else 0.
void giAcceptWindow(const unsigned char* values, unsigned long n, unsigned char min, unsigned char max,
                    unsigned char* accepted);
void giAcceptWindow(const short* values, unsigned long n, short min, short max, unsigned char* accepted);
void giAcceptWindow(const unsigned short* values, unsigned long n, unsigned short min, unsigned short max,
                    unsigned char* accepted);
void giAcceptWindow(const int* values, unsigned long n, int min, int max, unsigned char* accepted);
void giAcceptWindow(const unsigned int* values, unsigned long n, unsigned int min, unsigned int max,
                    unsigned char* accepted);
void giAcceptWindow(const float* values, unsigned long n, float min, float max, unsigned char* accepted);
void giAcceptWindow(const double* values, unsigned long n, double min, double max, unsigned char* accepted);

/// Refuses elements that carry another label.
void giRefuseOtherLabels(const unsigned char* labels, unsigned long n, unsigned char label,
                         unsigned char* accepted);

/// Packs 64 * n acceptances into n words, the first one lowest.
void giPackAccepted(const unsigned char* accepted, unsigned long n, std::uint64_t* words);

/// Both steps in one, for floats: bit i of the words tells whether min <= values[i] <= max. Bits beyond n are
/// 0. Without bytes in between the loop keeps up with the memory.
void giAcceptWindowBits(const float* values, unsigned long n, float min, float max, std::uint64_t* words);
