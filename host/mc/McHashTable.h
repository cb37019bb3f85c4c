#pragma once

#include "mc/McMemoryException.h"
#include "mc/McVec.h"

#include <cstdint>
#include <deque>
#include <new>
#include <vector>

/// Hash of a key; more types by overloading mcHash for them. Neighbouring keys are the rule here (voxel
/// corners), so that every bit of the key has to reach the lowest bits of the hash.
inline std::uint64_t mcHash(std::uint64_t key)
{
    // Finaliser of SplitMix64: Steele, Lea and Flood, "Fast Splittable Pseudorandom Number Generators", 2014.
    key = (key ^ key >> 30) * 0xbf58476d1ce4e5b9u;
    key = (key ^ key >> 27) * 0x94d049bb133111ebu;
    return key ^ key >> 31;
}

inline std::uint64_t mcHash(const McVec3i& v)
{
    const std::uint64_t low = std::uint64_t(std::uint32_t(v.x)) | std::uint64_t(std::uint32_t(v.y)) << 32;
    return mcHash(low ^ mcHash(std::uint32_t(v.z)));
}

/// Chained hash table with a default value. Values keep their address until removeAll().
///
/// The number of buckets is a power of two and starts with 1; it doubles when there are more than twice as
/// many entries as buckets. Calls that insert throw McMemoryException and then leave the table as it was.
template <class K, class V>
class McHashTable
{
public:
    explicit McHashTable(const V& absent = V()) : absentValue(absent), buckets(1, nullptr) {}
    McHashTable(const McHashTable&) = delete;
    McHashTable& operator=(const McHashTable&) = delete;

    /// The value of a key. An absent key is inserted with the default value.
    V& operator[](const K& key)
    {
        if (V* found = lookup(key)) return *found;
        return insert(key);
    }

    /// The value of a key, or null; never inserts.
    V* lookup(const K& key)
    {
        for (Entry* e = buckets[bucketOf(key)]; e; e = e->next)
            if (e->key == key) return &e->value;
        return nullptr;
    }
    const V* lookup(const K& key) const { return const_cast<McHashTable*>(this)->lookup(key); }

    int size() const { return int(entries.size()); }

    void removeAll()
    {
        entries.clear();
        buckets.assign(1, nullptr);
        mask = 0;
    }

private:
    struct Entry
    {
        K key;
        V value;
        Entry* next;
    };

    V absentValue;
    std::deque<Entry> entries; // keeps the addresses while it grows
    std::vector<Entry*> buckets;
    std::uint64_t mask = 0; // number of buckets - 1

    std::uint64_t bucketOf(const K& key) const { return mcHash(key) & mask; }

    V& insert(const K& key)
    {
        try {
            if (entries.size() + 1 > 2 * mask + 1) doubleBuckets();
            Entry*& head = buckets[bucketOf(key)];
            entries.push_back(Entry{key, absentValue, head});
            head = &entries.back();
            return head->value;
        } catch (const std::bad_alloc&) {
            throw McMemoryException((2 * mask + 2) * sizeof(Entry*) + sizeof(Entry));
        }
    }

    void doubleBuckets()
    {
        buckets.assign(2 * (mask + 1), nullptr);
        mask = 2 * mask + 1;
        for (Entry& e : entries) {
            Entry*& head = buckets[bucketOf(e.key)];
            e.next = head;
            head = &e;
        }
    }
};
