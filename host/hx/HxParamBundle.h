#pragma once

#include "hx/HxParamBase.h"
#include "hx/HxParameter.h"

#include <memory>
#include <vector>

/// A bundle of parameters and sub-bundles, which it owns. Names are unique within a bundle.
///
/// Values and sub-bundles are counted and walked apart, each kind in its own order. In the bundle
/// "Materials" the index of a sub-bundle is the label value of the material.
///
/// Look-ups take names as users write them and apply the name rule first, so that "Left Lung"
/// finds what it made. Single-threaded, no signals.
class HxParamBundle : public HxParamBase
{
public:
    explicit HxParamBundle(const char* name = "");
    /// A deep copy, which belongs to no bundle.
    HxParamBundle(const HxParamBundle& other);
    ~HxParamBundle() override;

    // Sub-bundles

    int nBundles() const { return static_cast<int>(bundles.size()); }
    /// Null outside.
    HxParamBundle* bundle(int i) const;
    /// By name; null if absent and `create` is 0, else made at the end. A value of that name
    /// gives way to the bundle.
    HxParamBundle* bundle(const char* name, int create);
    const HxParamBundle* bundle(const char* name) const;
    /// The sub-bundle "Materials", created empty when absent.
    HxParamBundle* materials();
    /// Index of a sub-bundle, -1 if absent.
    int index(const HxParamBase* bundle) const;
    int index(const char* name) const;
    /// Moves a sub-bundle so that it has index `to` (limited to the ends). False if it is absent.
    bool relocate(const HxParamBase* bundle, int to);
    bool relocate(int from, int to);

    // Values

    int nParameters() const { return static_cast<int>(values.size()); }
    /// Null outside.
    HxParameter* parameter(int i) const;
    /// By name; null if absent.
    HxParameter* parameter(const char* name) const;

    // Both kinds

    /// The value or sub-bundle of a name; null if absent.
    HxParamBase* find(const char* name) const;
    /// Takes the entry over and puts it at the end of its kind, or at `position`. In a bundle
    /// named "Materials" a newcomer with a taken name gets a number appended; elsewhere it
    /// replaces the entry of its name. An entry of another bundle moves here.
    void insert(HxParamBase* entry, int position = -1);
    /// Takes the entry out and deletes it. False, and nothing happens, if it is not an entry of
    /// this bundle or has the flag kFixed.
    bool remove(HxParamBase* entry);
    bool remove(const char* name);
    /// Deletes all entries, fixed ones too.
    void clear();
    /// Replaces the whole content by a deep copy of the other's; the own name stays.
    void copy(const HxParamBundle& other);

    // Reading. All give 1, or 0 and leave the output alone. Numbers convert, strings do not.

    int findReal(const char* name, int count, float* out) const;
    int findReal(const char* name, int count, double* out) const;
    int findReal(const char* name, float& out) const { return findReal(name, 1, &out); }
    int findNum(const char* name, int& out) const;
    int findNum(const char* name, int count, int* out) const;
    /// The pointer form is valid until the entry changes.
    int findString(const char* name, McString& out) const;
    int findString(const char* name, const char*& out) const;
    /// "Color": three numbers, or a string of three numbers such as "0.64 0 0.8".
    int findColor(float* rgb) const;

    // Writing: overwrites the entry of that name in its place, or appends.

    void set(const char* name, int value);
    void set(const char* name, float value);
    void set(const char* name, double value);
    void set(const char* name, int count, const int* numbers);
    void set(const char* name, int count, const float* numbers);
    void set(const char* name, int count, const double* numbers);
    void set(const char* name, const char* text);
    /// "Color" as three floats from 0 to 1.
    void setColor(const float* rgb);

    HxParamBase* clone() const override;
    HxParamBundle* asBundle() override { return this; }

private:
    friend class HxParamBase;

    HxParameter& valueToWrite(const char* name);
    bool isTaken(const McString& name, const HxParamBase* except) const;
    McString freeName(const McString& wanted, const HxParamBase* except) const;
    bool isAncestorOrSelf(const HxParamBase* entry) const;
    std::unique_ptr<HxParamBase> release(HxParamBase* entry);

    std::vector<std::unique_ptr<HxParameter>> values;
    std::vector<std::unique_ptr<HxParamBundle>> bundles;
};
