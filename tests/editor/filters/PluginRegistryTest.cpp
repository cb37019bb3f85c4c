// Filters in libraries of their own: the registry of script variables, and what goes wrong with it.

#include "display/GiWindowless.h"
#include "filters/GiFilter.h"
#include "filters/GiFilterFactory.h"
#include "hx/HxInterpreter.h"
#include "hx/HxMessage.h"

#include <QPointer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Names = std::vector<std::string>;

class PluginRegistry : public testing::Test
{
protected:
    PluginRegistry()
    {
        HxMessage::setSink([this](const char* line) { console.push_back(line); });
    }
    ~PluginRegistry() override
    {
        HxMessage::setSink({});
        eval("namespace eval kelvane {}; namespace delete kelvane");
    }
    static void eval(const std::string& script)
    {
        McString result;
        ASSERT_EQ(HxInterpreter::getTheInterpreter()->eval(script.c_str(), result), 0) << result.c_str();
    }
    static void fill(const std::string& names, const std::string& libraries, const std::string& entries)
    {
        eval("namespace eval kelvane {set pluginFilterName {" + names + "}; set pluginLibs {" + libraries +
             "}; set pluginClasses {" + entries + "}}");
    }
    static Names registered()
    {
        Names names;
        for (const McString& name : GiFilterFactory::getNames()) names.push_back(name.str());
        return names;
    }
    /// Names of the plug-in filters of a new editor; each must hold one reference.
    static Names made()
    {
        Names names;
        const GiWindowless gi;
        for (const GiFilter* filter : gi.pluginFilters) {
            names.push_back(filter->name);
            EXPECT_EQ(filter->refCount(), 1);
        }
        EXPECT_EQ(gi.filters.size(), 5) << "scripts address the built-in ones by their place";
        return names;
    }

    Names console;
};

} // namespace

TEST_F(PluginRegistry, MakesTheFiltersOfEachNewEditorInOrder)
{
    EXPECT_THAT(registered(), IsEmpty());
    EXPECT_THAT(made(), IsEmpty());
    fill("{One of them} Two", "test_plugins test_plugins", "makeFirst makeSecond");
    EXPECT_THAT(registered(), ElementsAre("One of them", "Two"));
    EXPECT_THAT(made(), ElementsAre("First", "Second"));
    EXPECT_THAT(made(), ElementsAre("First", "Second")) << "the library is there already";
    EXPECT_THAT(console, IsEmpty());
}

TEST_F(PluginRegistry, GoesOnWithoutWhatFails)
{
    const struct
    {
        const char* names;
        const char* libraries;
        const char* entries;
        Names made;
        Names console;
    } kCases[] = {
        {"", "", "", {}, {}},
        {"Absent Good",
         "nowhere test_plugins",
         "makeFirst makeSecond",
         {"Second"},
         {"Internal error: could not open libnowhere.so",
          "libnowhere.so: cannot open shared object file: No such file or directory"}},
        {"NoSymbol Good", "test_plugins test_plugins", "makeNothing makeSecond", {"Second"}, {}},
        {"Bad Good",
         "test_plugins test_plugins",
         "throwWhileMaking makeFirst",
         {"First"},
         {"Plug-in filter \"Bad\" cannot be used: no licence for this."}},
        {"Odd Good",
         "test_plugins test_plugins",
         "throwNumber makeFirst",
         {"Second", "First"}, // what was whole before the exception stays
         {"Plug-in filter \"Odd\" cannot be used: it failed to start."}},
        // The first entry of a name counts, each time that the name stands in the list.
        {"Twice Twice", "test_plugins nowhere", "makeFirst makeSecond", {"First", "First"}, {}},
        {"Short NoLibrary",
         "test_plugins",
         "makeFirst makeSecond",
         {"First"},
         {"Internal error: could not open lib.so",
          "lib.so: cannot open shared object file: No such file or directory"}},
        {"Short NoEntry", "test_plugins test_plugins", "makeFirst", {"First"}, {}},
    };
    for (const auto& c : kCases) {
        console.clear();
        fill(c.names, c.libraries, c.entries);
        EXPECT_EQ(made(), c.made) << c.names;
        EXPECT_EQ(console, c.console) << c.names;
    }
}

TEST_F(PluginRegistry, ListsThatAreMissingOrAreNoListsMakeNothing)
{
    eval("namespace eval kelvane {set pluginFilterName Alone}");
    EXPECT_THAT(made(), IsEmpty());
    eval("set kelvane::pluginFilterName [format %cbroken 123]"); // an open brace
    EXPECT_THAT(registered(), IsEmpty());
    EXPECT_THAT(made(), IsEmpty());
    EXPECT_EQ(GiFilterFactory::createFilter("Unknown", nullptr), 0);
}

TEST_F(PluginRegistry, DialogsAreMadeOnDemandAndEndWithTheirFilterOrTheirParent)
{
    fill("One", "test_plugins", "makeFirst");
    QPointer<QWidget> dialog;
    {
        const GiWindowless gi;
        GiFilter& filter = *gi.pluginFilters[0];
        EXPECT_EQ(filter.getWidget(nullptr, false), nullptr);
        dialog = filter.getWidget(nullptr, true);
        ASSERT_TRUE(dialog);
        EXPECT_EQ(filter.getWidget(nullptr, true), dialog);
        EXPECT_EQ(filter.getStopButton(), nullptr);
        filter.destroyWidget();
        filter.destroyWidget();
        EXPECT_FALSE(dialog);

        auto parent = std::make_unique<QWidget>();
        dialog = filter.getWidget(parent.get(), true);
        EXPECT_EQ(dialog->parent(), parent.get());
        parent.reset();
        EXPECT_EQ(filter.getWidget(nullptr, false), nullptr);
        dialog = filter.getWidget(nullptr, true);
    }
    EXPECT_FALSE(dialog) << "the filter ends with its editor, and its dialog with it";

    GiWindowless gi;
    GiFilter plain(&gi);
    EXPECT_EQ(plain.getWidget(nullptr, true), nullptr);
}
