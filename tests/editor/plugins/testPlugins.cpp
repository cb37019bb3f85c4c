// Entry functions for the registry of plug-in filters: sound ones, and each way to fail.

#include "core/Gi.h"
#include "filters/GiFilter.h"

#include <QLabel>

#include <stdexcept>

namespace {

/// A filter whose dialog shows its name.
class TestFilter : public GiFilter
{
public:
    TestFilter(Gi* owner, const char* title) : GiFilter(owner) { name = title; }

protected:
    QWidget* createWidget(QWidget* parent) override { return new QLabel(name, parent, Qt::Dialog); }
};

class Unmakeable : public TestFilter
{
public:
    explicit Unmakeable(Gi* owner) : TestFilter(owner, "Unmakeable")
    {
        throw std::runtime_error("no licence for this.");
    }
};

class Unshowable : public TestFilter
{
public:
    using TestFilter::TestFilter;

protected:
    QWidget* createWidget(QWidget*) override { throw std::runtime_error("no dialog today."); }
};

} // namespace

extern "C" {

void makeFirst(Gi* gi)
{
    gi->pluginFilters.append(new TestFilter(gi, "First"));
}

void makeSecond(Gi* gi)
{
    gi->pluginFilters.append(new TestFilter(gi, "Second"));
}

void makeUnshowable(Gi* gi)
{
    gi->pluginFilters.append(new Unshowable(gi, "Unshowable"));
}

void throwWhileMaking(Gi* gi)
{
    gi->pluginFilters.append(new Unmakeable(gi));
}

void throwNumber(Gi* gi)
{
    makeSecond(gi);
    throw 42;
}
}
