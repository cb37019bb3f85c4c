#include "hx/HxMessage.h"
#include "hx/HxSettingsMgr.h"

#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

class HxSettingsTest : public testing::Test
{
protected:
    HxSettingsTest()
    {
        HxMessage::setSink([this](const char* line) { lines.emplace_back(line); });
        HxSettingsMgr::useMemoryStore();
    }

    ~HxSettingsTest() override
    {
        HxSettingsMgr::useMemoryStore();
        HxMessage::setSink({});
    }

    QByteArray path(const char* name) const { return dir.filePath(name).toUtf8(); }

    static HxPreferences changedInAllFields()
    {
        HxPreferences p;
        p.selectionDrawStyle = 3;
        p.selectionAlpha = 200;
        p.selectionStyle3D = "Solid";
        p.anatomicalNames = true;
        p.numThreads = 5;
        p.giOrientation = "2 0 1 1";
        p.giMagicWand = "0 255.5 1 0 1 0 0.25";
        return p;
    }

    static std::vector<std::string> texts(const HxPreferences& p)
    {
        std::vector<std::string> all;
        McString value;
        McString error;
        for (const char* name : HxPreferences::fieldNames()) {
            EXPECT_TRUE(p.get(name, value, error)) << error.c_str();
            all.emplace_back(value.c_str());
        }
        return all;
    }

    HxSettingsMgr& settings = *HxSettingsMgr::getInstance();
    QTemporaryDir dir;
    std::vector<std::string> lines;
};

TEST_F(HxSettingsTest, AFileStoreGivesEverythingBack)
{
    HxSettingsMgr::useFile(path("a.ini"));
    settings.setPreferences(changedInAllFields(), true);
    settings.setGeometry("giStat", QRect(10, -20, 300, 400));
    ASSERT_TRUE(settings.write());

    HxSettingsMgr::useMemoryStore();
    EXPECT_EQ(texts(settings.getPreferences()), texts(HxPreferences())) << "memory starts from defaults";
    EXPECT_FALSE(settings.getGeometry("giStat").isValid());

    HxSettingsMgr::useFile(path("a.ini"));
    EXPECT_EQ(texts(settings.getPreferences()), texts(changedInAllFields()));
    EXPECT_EQ(settings.getGeometry("giStat"), QRect(10, -20, 300, 400));
    EXPECT_FALSE(settings.getGeometry("never stored").isValid());
    EXPECT_THAT(lines, testing::IsEmpty());
}

TEST_F(HxSettingsTest, SilentStoringWaitsForTheNextWriteAndTellsNobody)
{
    HxSettingsMgr::useFile(path("b.ini"));
    int told = 0;
    McString before;
    McString after;
    const auto connection = QObject::connect(&settings, &HxSettingsMgr::preferencesChanged,
                                             [&](const HxPreferences& old, const HxPreferences& now) {
                                                 ++told;
                                                 before = old.selectionStyle3D;
                                                 after = now.selectionStyle3D;
                                             });
    settings.setPreferences(changedInAllFields(), false);
    EXPECT_EQ(told, 0);
    EXPECT_FALSE(QFile::exists(path("b.ini")));
    EXPECT_EQ(settings.getPreferences().selectionAlpha, 200);
    settings.write();
    EXPECT_TRUE(QFile::exists(path("b.ini")));

    HxPreferences next = settings.getPreferences();
    next.selectionStyle3D = "Points1";
    settings.setPreferences(next, true);
    EXPECT_EQ(told, 1);
    EXPECT_STREQ(before, "Solid");
    EXPECT_STREQ(after, "Points1");
    QObject::disconnect(connection);
}

TEST_F(HxSettingsTest, BadValuesInAFileAreReportedAndReplacedByDefaults)
{
    QFile file(path("c.ini"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(
        "[preferences]\nselectionAlpha=900\nselectionStyle3D=Cubes\nnumThreads=3\ngiOrientation=1 2\n");
    file.close();
    HxSettingsMgr::useFile(path("c.ini"));
    EXPECT_EQ(settings.getPreferences().selectionAlpha, 96);
    EXPECT_STREQ(settings.getPreferences().selectionStyle3D, "Points2");
    EXPECT_EQ(settings.getPreferences().numThreads, 3) << "good values beside bad ones hold";
    EXPECT_STREQ(settings.getPreferences().giOrientation, "");
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_THAT(lines[0], testing::HasSubstr("c.ini: Preference \"selectionAlpha\" takes"));
}

TEST_F(HxSettingsTest, AFileOfSomethingElseIsLeftAlone)
{
    const struct
    {
        const char* name;
        QByteArray content;
    } cases[] = {{"scan.nrrd", QByteArray("NRRD0004\ntype: uchar\ndimension: 3\n\n\0\1\2\xff", 39)},
                 {"other.ini", "[desktop]\ncolor=7\n"},
                 {"noGroup.ini", "selectionAlpha=7\n"}};
    for (const auto& c : cases) {
        QFile file(path(c.name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(c.content);
        file.close();
        lines.clear();
        EXPECT_FALSE(HxSettingsMgr::useFile(path(c.name))) << c.name;
        EXPECT_THAT(lines, testing::ElementsAre(testing::HasSubstr("not a preferences file"))) << c.name;
        settings.setPreferences(changedInAllFields(), true);
        EXPECT_TRUE(settings.write());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_EQ(file.readAll(), c.content) << c.name;
    }
    EXPECT_FALSE(HxSettingsMgr::useFile(dir.path().toUtf8())) << "a folder";

    QFile empty(path("empty.ini"));
    ASSERT_TRUE(empty.open(QIODevice::WriteOnly));
    empty.close();
    EXPECT_TRUE(HxSettingsMgr::useFile(path("empty.ini")));
    EXPECT_TRUE(HxSettingsMgr::useFile(path("new.ini")));
}

TEST_F(HxSettingsTest, AStoreThatCannotBeWrittenIsReported)
{
    HxSettingsMgr::useFile("/proc/nowhere/x.ini");
    settings.setPreferences(changedInAllFields(), false);
    EXPECT_FALSE(settings.write());
    EXPECT_THAT(lines, testing::ElementsAre(testing::HasSubstr("/proc/nowhere/x.ini")));
}

TEST_F(HxSettingsTest, ThreadsAreAtLeastOne)
{
    HxPreferences none;
    none.numThreads = 0;
    settings.setPreferences(none, true);
    EXPECT_EQ(settings.numThreads(), 1);
}

struct FieldCase
{
    const char* field;
    const char* value;
    bool good;
};

TEST_F(HxSettingsTest, FieldsTakeOnlyTheirValues)
{
    const FieldCase cases[] = {
        {"selectionDrawStyle", "4", true},
        {"selectionDrawStyle", "5", false},
        {"selectionDrawStyle", "-1", false},
        {"selectionDrawStyle", "1x", false},
        {"selectionDrawStyle", "", false},
        {"selectionDrawStyle", "2.0", false},
        {"selectionAlpha", "255", true},
        {"selectionAlpha", "256", false},
        {"selectionAlpha", "99999999999999999999", false},
        {"selectionStyle3D", "Points1", true},
        {"selectionStyle3D", "points1", false},
        {"anatomicalNames", "on", true},
        {"anatomicalNames", "maybe", false},
        {"anatomicalNames", "", false},
        {"numThreads", "0", true},
        {"numThreads", "-2", false},
        {"giOrientation", "0 1 0 1", true},
        {"giOrientation", "", true},
        {"giOrientation", "0 1 0", false},
        {"giOrientation", "0 1 0 1 1", false},
        {"giOrientation", "0 1 0 x", false},
        {"giMagicWand", "0.5 1e3 1 0 0 1 -2", true},
        {"giMagicWand", "0.5 1 1.5 0 0 1 2", false},
        {"giMagicWand", "1 2 3 4 5 6 nan", false},
        {"giMagicWand", "inf 1 1 0 0 1 2", false},
        {"noSuchField", "1", false},
    };
    for (const FieldCase& c : cases) {
        HxPreferences p = changedInAllFields();
        McString error;
        EXPECT_EQ(p.set(c.field, c.value, error), c.good) << c.field << " <- " << c.value;
        if (c.good) {
            EXPECT_TRUE(error.isEmpty());
        } else {
            EXPECT_THAT(error.str(), testing::HasSubstr(c.field));
            EXPECT_EQ(texts(p), texts(changedInAllFields())) << "a refused value changes nothing";
        }
    }
}

} // namespace
