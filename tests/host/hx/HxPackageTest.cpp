#include "hx/HxPackage.h"
#include "hx/HxClassRegistry.h"
#include "hx/HxColormap.h"
#include "hx/HxDSO.h"
#include "hx/HxInterpreter.h"
#include "hx/HxMessage.h"
#include "hx/HxObject.h"
#include "hx/HxResource.h"
#include "hx/HxSkin.h"
#include "hx/HxSubApplication.h"
#include "mc/McHandle.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <string>

namespace {

using testing::HasSubstr;

/// The test packages lie in a folder of their own beside the libraries of the host.
class HxPackageTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        const QString folder = QCoreApplication::applicationDirPath() + "/../lib/test_packages";
        hxRegisterHostClasses();
        HxPackage::addLibraryFolder(QDir::cleanPath(folder).toUtf8().constData());
    }

    HxPackageTest()
    {
        HxMessage::setSink([this](const char* line) { lines.emplace_back(line); });
    }

    ~HxPackageTest() override
    {
        HxMessage::setSink({});
        HxResource::mSubApplications.clear();
        qunsetenv("VOREL_RESOURCES");
    }

    std::string write(const char* name, const char* text) const
    {
        const std::string path = dir.filePath(name).toStdString();
        std::ofstream(path) << text;
        return path;
    }

    static std::string var(const char* name)
    {
        const char* value = HxInterpreter::getTheInterpreter()->getVar(name);
        return value ? value : "unset";
    }

    QTemporaryDir dir;
    std::string error;
    std::vector<std::string> lines;
};

TEST_F(HxPackageTest, AnotherStampIsRefusedBeforeItsInit)
{
    EXPECT_FALSE(HxPackage::load("test_stamp", error));
    EXPECT_THAT(error, HasSubstr("vorel-0 of long ago"));
    EXPECT_THAT(error, HasSubstr(kHxPackageStamp));
    EXPECT_EQ(var("test_stamp_inits"), "unset");
    EXPECT_FALSE(HxPackage::isLoaded("test_stamp"));
}

TEST_F(HxPackageTest, AMissingFunctionOrLibraryIsNamed)
{
    EXPECT_FALSE(HxPackage::load("test_nofinish", error));
    EXPECT_THAT(error, HasSubstr("vorelpackage_test_nofinish_finish"));
    EXPECT_EQ(var("test_nofinish_inits"), "unset");
    EXPECT_FALSE(HxPackage::load("no_such_package", error));
    EXPECT_THAT(error, HasSubstr("libno_such_package.so"));
}

TEST_F(HxPackageTest, AResourceFileAnnouncesClassesThatLoadTheirPackageOnDemand)
{
    write("a.rc.tcl", "foreach c {TestGoodObject} { class $c test_good }\n"
                      "class TestMissingObject no_such_package\n"
                      "editor TestEditor HxLabelLattice3\n"
                      "module TestModule HxUniformLabelField3 HxStackedLabelField3\n"
                      "subApplication TestSubApplication {Cut and paste} cut.png\n");
    qputenv("VOREL_RESOURCES", dir.path().toUtf8());
    ASSERT_FALSE(HxSubApplication::hasSubApplications());
    EXPECT_EQ(HxPackage::start(), 0);

    EXPECT_TRUE(HxSubApplication::hasSubApplications());
    ASSERT_EQ(HxResource::mSubApplications.size(), 1u);
    EXPECT_EQ(HxResource::mSubApplications[0].title, "Cut and paste");
    EXPECT_EQ(HxResource::mSubApplications[0].icon, "cut.png");
    EXPECT_FALSE(HxResource::mSubApplications[0].instance);
    EXPECT_EQ(HxPackage::editors().back().interfaceName, "HxLabelLattice3");
    EXPECT_THAT(HxPackage::modules().back().inputTypes,
                testing::ElementsAre("HxUniformLabelField3", "HxStackedLabelField3"));

    EXPECT_EQ(var("test_good_inits"), "unset") << "a class alone does not load its package";
    EXPECT_EQ(HxResource::createObject("TestMissingObject"), nullptr);
    EXPECT_THAT(lines, testing::ElementsAre(HasSubstr("libno_such_package.so")));
    EXPECT_EQ(HxResource::createObject("TestNeverHeardOf"), nullptr);

    const McHandle<HxObject> object = HxResource::createObject("TestGoodObject");
    ASSERT_TRUE(object);
    EXPECT_TRUE(HxPackage::load("test_good", error));
    EXPECT_EQ(var("test_good_inits"), "1") << "initialised once";

    HxPackage::finishAll();
    HxPackage::finishAll();
    EXPECT_EQ(var("test_good_finishes"), "1");
}

TEST_F(HxPackageTest, ABadResourceFileIsRefusedWhole)
{
    const std::string wrongCount = write("b.rc.tcl", "subApplication A B\neditor OnlyOneWord\n");
    EXPECT_FALSE(HxPackage::readResourceFile(wrongCount.c_str(), error));
    EXPECT_THAT(error, HasSubstr("b.rc.tcl, line 2: wrong # args: should be \"editor CLASS INTERFACE\""));
    EXPECT_TRUE(HxResource::mSubApplications.empty());

    const std::string forbidden = write("c.rc.tcl", "open /etc/passwd\n");
    EXPECT_FALSE(HxPackage::readResourceFile(forbidden.c_str(), error));
    EXPECT_FALSE(HxPackage::readResourceFile("/nonexistent/d.rc.tcl", error));
    EXPECT_THAT(error, HasSubstr("/nonexistent/d.rc.tcl"));
}

TEST_F(HxPackageTest, FilesOfAPackageLieBesideItsResourceFile)
{
    QDir(dir.path()).mkdir("test_help");
    const std::string page = write("test_help/page.html", "x");
    const std::string rc = write("e.rc.tcl", "package_library test_help\n");
    ASSERT_TRUE(HxPackage::readResourceFile(rc.c_str(), error)) << error;
    const HxSkin* skin = HxSkin::getGlobalInstance();
    EXPECT_STREQ(skin->getPathToHelpFile("page.html", "test_help"), page.c_str());
    EXPECT_THAT(skin->getPathToHelpFile("none.html", "test_help").str(), HasSubstr("/test_help/none.html"));
    EXPECT_EQ(HxPackage::findResource("page.html"), page);
    EXPECT_EQ(HxPackage::findResource("none.html"), "");

    qputenv("VOREL_RESOURCES", QByteArray(":"));
    EXPECT_STREQ(skin->getPathToHelpFile("none.html", "nowhere"), "nowhere/none.html") << "no folder at all";
    qputenv("VOREL_RESOURCES", QByteArray("/nonexistent"));
    EXPECT_EQ(HxPackage::start(), 1) << "the announced library does not exist";
    EXPECT_THAT(lines, testing::ElementsAre(HasSubstr("libtest_help.so")));
    EXPECT_EQ(HxPackage::start(), 0) << "it is tried once";
}

TEST_F(HxPackageTest, ALibraryStaysLoadedWhenItsObjectGoes)
{
    using Stamp = const char* (*)();
    Stamp stamp = nullptr;
    {
        HxDSO library;
        EXPECT_EQ(library.getSymbol("printf"), nullptr) << "nothing is open yet";
        ASSERT_EQ(library.open("libtest_stamp.so"), 0) << library.errorText();
        EXPECT_EQ(library.getSymbol("no_such_symbol"), nullptr);
        stamp = reinterpret_cast<Stamp>(library.getSymbol("vorelpackage_test_stamp"));
        ASSERT_NE(stamp, nullptr);
    }
    EXPECT_STREQ(stamp(), "vorel-0 of long ago");

    HxDSO system;
    EXPECT_EQ(system.open("libm.so.6"), 0) << "the system's libraries come after the packages'";
    HxDSO none;
    EXPECT_NE(none.open("libnothing_of_the_kind.so"), 0);
    EXPECT_THAT(none.errorText(), HasSubstr("libnothing_of_the_kind.so"));
}

TEST(HxClassRegistryTest, KnowsBasesAndMakesObjects)
{
    HxClassRegistry::add("RegistryTestA", nullptr);
    HxClassRegistry::add("RegistryTestB", "RegistryTestA", [] { return new HxColormap; });
    HxClassRegistry::add("RegistryTestLoop1", "RegistryTestLoop2");
    HxClassRegistry::add("RegistryTestLoop2", "RegistryTestLoop1");
    EXPECT_TRUE(HxClassRegistry::isDerived("RegistryTestB", "RegistryTestA"));
    EXPECT_TRUE(HxClassRegistry::isDerived("RegistryTestB", "RegistryTestB"));
    EXPECT_FALSE(HxClassRegistry::isDerived("RegistryTestA", "RegistryTestB"));
    EXPECT_FALSE(HxClassRegistry::isDerived("RegistryTestLoop1", "RegistryTestA"));
    EXPECT_EQ(HxClassRegistry::create("RegistryTestA"), nullptr);
    const McHandle<HxBase> made = HxClassRegistry::create("RegistryTestB");
    EXPECT_TRUE(made);
    EXPECT_EQ(HxResource::createObject("RegistryTestB"), nullptr) << "its chain does not reach HxObject";
    const auto names = HxClassRegistry::creatable();
    EXPECT_EQ(std::count(names.begin(), names.end(), "RegistryTestB"), 1);
    EXPECT_EQ(std::count(names.begin(), names.end(), "RegistryTestA"), 0);
}

} // namespace
