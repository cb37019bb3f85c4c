#include "core/GiLabelTransfer.h"

#include "core/GiAcceptRow.h"
#include "core/GiBoundaryCount.h"
#include "core/GiLabelWords.h"
#include "core/GiRowFill.h"
#include "mc/McBitfield.h"
#include "mc/McDArray.h"

#include <algorithm>
#include <bit>
#include <cstdint>

namespace {

constexpr unsigned long kWord = 32; // voxels per word of a bit field

/// Runs step(first, end) on one contiguous chunk of [0, n) per thread.
template <class Step>
void forEachChunk(unsigned long n, int threads, const Step& step)
{
    const auto parts = std::clamp(static_cast<unsigned long>(std::max(1, threads)), 1ul, std::max(1ul, n));
    const unsigned long chunk = (n + parts - 1) / parts;
#pragma omp parallel for num_threads(static_cast <int>(parts)) schedule(static, 1)
    for (unsigned long part = 0; part < parts; ++part) {
        const unsigned long first = std::min(n, part * chunk);
        const unsigned long end = std::min(n, first + chunk);
        if (first < end) step(first, end);
    }
}

/// Writes `value` into each voxel of the set whose label is `changeable`.
void writeVoxels(const McBitfield& bits, unsigned char* labels, unsigned long n, const GiLabelSet& changeable,
                 unsigned char value, int threads)
{
    forEachChunk(n / kWord, threads, [&](unsigned long first, unsigned long end) {
        giWriteWords(bits.words(), first, end, labels, changeable, value);
    });
    for (unsigned long i = n / kWord * kWord; i < n; ++i)
        if (bits.isSet(i) && changeable.contains(labels[i])) labels[i] = value;
}

/// Counts the labels of the set itself in whole words [first, end).
void countOwn(const McBitfield& bits, const unsigned char* labels, unsigned long first, unsigned long end,
              GiLabelHistogram& histogram)
{
    // Neighbours mostly carry one label. Counting them in turn in several tables keeps an increment
    // from waiting for the one before.
    constexpr int kTables = 4;
    GiLabelHistogram tables[kTables];
    for (unsigned long i = first; i < end; ++i) {
        unsigned int word = bits.words()[i];
        const unsigned char* const at = labels + i * kWord;
        for (; word; word &= word - 1) {
            const int k = std::countr_zero(word);
            ++tables[k % kTables].counts[at[k]];
        }
    }
    for (const GiLabelHistogram& table : tables) histogram.add(table);
}

} // namespace

void giAddVoxels(const McBitfield& bits, unsigned char* labels, unsigned long n, int tissue,
                 const int* locked, int threads)
{
    GiLabelSet unlocked;
    for (int label = 0; label < 256; ++label)
        if (!locked || !locked[label]) unlocked.insert(label);
    writeVoxels(bits, labels, n, unlocked, static_cast<unsigned char>(tissue), threads);
}

void giMoveVoxels(const McBitfield& bits, unsigned char* labels, unsigned long n, int tissue, int target,
                  int threads)
{
    if (tissue < 0 || tissue > 255) return;
    GiLabelSet moving;
    moving.insert(tissue);
    writeVoxels(bits, labels, n, moving, static_cast<unsigned char>(target), threads);
}

int giChooseTarget3D(const McBitfield& bits, const unsigned char* labels, const unsigned long* dims,
                     int tissue, int threads)
{
    GiLabelHistogram shared;
    const GiBoundaryCount boundary(bits, labels, dims);
    forEachChunk(dims[1] * dims[2], threads, [&](unsigned long first, unsigned long end) {
        GiLabelHistogram own;
        boundary.countRows(first, end, own);
#pragma omp critical(giLabelTransferCount)
        shared.add(own);
    });
    int target = shared.mostFrequentBut(tissue);
    if (target >= 0) return target;

    // Padding bits are 0, so the last word needs no treatment of its own.
    const unsigned long n = dims[0] * dims[1] * dims[2];
    forEachChunk(n / kWord, threads, [&](unsigned long first, unsigned long end) {
        GiLabelHistogram own;
        countOwn(bits, labels, first, end, own);
#pragma omp critical(giLabelTransferCount)
        shared.add(own);
    });
    for (unsigned long i = n / kWord * kWord; i < n; ++i)
        if (bits.isSet(i)) ++shared.counts[labels[i]];
    target = shared.mostFrequentBut(tissue);
    return target >= 0 ? target : 0;
}

void giSelectTissue(McBitfield& bits, const unsigned char* labels, unsigned long n, int tissue, int mode,
                    int threads)
{
    if (tissue < 0 || tissue > 255) {
        if (mode == kLabelsReplace) bits.unsetAll();
        return;
    }
    forEachChunk(n / kWord, threads, [&](unsigned long first, unsigned long end) {
        giMatchWords(bits.words(), first, end, labels, static_cast<unsigned char>(tissue), mode);
    });
    for (unsigned long i = n / kWord * kWord; i < n; ++i) {
        if (mode == kLabelsReplace) bits.unset(i);
        if (labels[i] != tissue) continue;
        if (mode == kLabelsReplace || mode == kLabelsAdd)
            bits.set(i);
        else
            bits.unset(i);
    }
}

void giMarkPieces(const McBitfield& selection, const unsigned char* labels, const unsigned long* dims,
                  int tissue, McBitfield& region)
{
    const unsigned long nx = dims[0], rows = dims[1] * dims[2];
    region.resize(0); // fresh memory comes cleared
    region.resize(nx * rows);
    if (tissue < 0 || tissue > 255) return;

    const auto label = static_cast<unsigned char>(tissue);
    const unsigned long words = (nx + 63) / 64;
    McDArray<unsigned char> accepted(static_cast<int>(words * 64)); // beyond the row: refused
    GiRowFill fill(dims, region, [&](unsigned long row, std::uint64_t* acceptedBits) {
        giAcceptWindow(labels + row * nx, nx, label, label, accepted.data());
        giPackAccepted(accepted.data(), words, acceptedBits);
    });
    for (unsigned long row = 0; row < rows; ++row) {
        for (unsigned long x = 0; x < nx; x += 64) {
            const unsigned long n = std::min(64ul, nx - x);
            const std::uint64_t selected = selection.load64(row * nx + x) & ~std::uint64_t{0} >> (64 - n);
            if (selected) fill.addSeeds(row, x / 64, selected);
        }
    }
    long ignoredBounds[6] = {};
    fill.fill(ignoredBounds);
}
