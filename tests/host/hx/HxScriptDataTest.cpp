#include "hx/HxColormap.h"
#include "hx/HxCompModule.h"
#include "hx/HxFileAccess.h"
#include "hx/HxInterpreter.h"
#include "hx/HxLineSet.h"
#include "hx/HxMessage.h"
#include "hx/HxObjectPool.h"
#include "hx/HxPortButtonList.h"
#include "hx/HxPortDoIt.h"
#include "hx/HxPortFloatTextN.h"
#include "hx/HxPortIntTextN.h"
#include "hx/HxPortMultiMenu.h"
#include "hx/HxPortRadioBox.h"
#include "hx/HxSpreadSheet.h"
#include "hx/HxUniformLabelField3.h"
#include "hx/HxUniformScalarField3.h"
#include "hx/HxWorkArea.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <cmath>
#include <fstream>
#include <new>
#include <sstream>
#include <string>
#include <vector>

namespace {

class ScriptModule : public HxCompModule
{
public:
    ScriptModule() : HxCompModule(McTypeId::of<HxUniformLabelField3>())
    {
        number.setRange(0, 100);
        distance.setRange(0.5f, 2);
        menu.setNum(2);
        radio.setLabel(2, "third");
    }
    HxPortMultiMenu menu{this, "menu"};
    HxPortRadioBox radio{this, "radio"};
    HxPortIntTextN number{this, "number"};
    HxPortFloatTextN distance{this, "distance"};
    HxPortButtonList buttons{this, "buttons", 2};
    HxPortDoIt action{this};
};

class HxObjectScripts : public testing::Test
{
protected:
    HxObjectScripts()
    {
        const unsigned long dims[3] = {3, 2, 2};
        labels = new HxUniformLabelField3(dims);
        const float box[6] = {0, 1, 0, 0.5f, -1, 1};
        labels->coords()->setBoundingBox(box);
        add(labels, "labels.nrrd");
        for (const char* name : {"Exterior", "Liver"}) labels->materials()->insert(new HxParamBundle(name));
        image = new HxUniformScalarField3(dims, kMcFloat);
        static_cast<float*>(image->lattice()->dataPtr())[11] = 0.1f;
        add(image, "image");
        module = new ScriptModule;
        add(module, "module");
        add(new HxColormap, "map");
        sheet = new HxSpreadSheet;
        add(sheet, "sheet");
        auto* lines = new HxLineSet;
        const int points[2] = {lines->addPoint(McVec3f(0, 0, 0)), lines->addPoint(McVec3f(3, 4, 0.5f))};
        lines->addLine(2, points);
        add(lines, "lines");
    }
    ~HxObjectScripts() override
    {
        HxObjectPool::getThePool()->clear();
        HxFileAccess::setWriter(nullptr);
        HxFileAccess::setReader(nullptr);
    }

    static void add(HxObject* object, const char* label)
    {
        object->setLabel(label);
        HxObjectPool::getThePool()->addObject(object);
    }

    /// The result, or "error: " and the message.
    static std::string eval(const char* script)
    {
        McString result;
        const int code = HxInterpreter::getTheInterpreter()->eval(script, result);
        return code == TCL_OK ? result.str() : "error: " + result.str();
    }

    HxUniformLabelField3* labels;
    HxUniformScalarField3* image;
    ScriptModule* module;
    HxSpreadSheet* sheet;
};

} // namespace

TEST_F(HxObjectScripts, AnswerWhatTheyHold)
{
    labels->labelLattice()->getLabels()[5] = 1;
    const struct
    {
        const char* script;
        const char* result;
    } cases[] = {
        {"labels.nrrd bbox", "0 1 0 0.5 -1 1"},
        {"labels.nrrd voxelSize", "0.5 0.5 2"},
        {"labels.nrrd range", "0 1"},
        {"labels.nrrd value 2 1 0", "1"},
        {"image value 2 1 1", "0.1"},
        {"labels.nrrd count 0", "11"},
        {"labels.nrrd count 255", "0"},
        {"labels.nrrd ports", "master ImageData"},
        {"labels.nrrd ImageData connect image", ""},
        {"labels.nrrd ImageData getValue", "image"},
        {"labels.nrrd parameters", "ImageData Materials"},
        {"labels.nrrd parameters Materials", "Exterior Liver"},
        {"labels.nrrd parameters Materials/Liver/Color {1 0.5 0}", ""},
        {"labels.nrrd parameters Materials/Liver/Color", "1 0.5 0"},
        {"labels.nrrd ImageData disconnect; labels.nrrd parameters", "Materials"},
        {"image rename labels.nrrd", "labels2.nrrd"},
        {"labels2.nrrd rename image", "image"},
        {"module ports", "data menu radio number distance buttons action"},
        {"module data connect labels.nrrd; module data getValue", "labels.nrrd"},
        {"module menu setIndex 1; module menu getIndex", "1"},
        {"module radio setValue 2; module radio getValue", "2"},
        {"module number setValue 500; module number getValue", "100"},
        {"module distance setValue 0; module distance getValue", "0.5"},
        {"module buttons setIndex 1; module buttons getIndex", "1"},
        {"module action hit; module fire; module action getIndex", "0"},
        {"map standard", "grey perceptual labels"},
        {"map standard labels; map color 0", "0 0 0 255"},
        {"lines line 0", "0 0 0 3 4 0.5"},
        {"sheet columns", ""},
    };
    for (const auto& c : cases) EXPECT_EQ(eval(c.script), c.result) << c.script;
}

TEST_F(HxObjectScripts, RefuseMisuseWithOneMessageAndChangeNothing)
{
    const struct
    {
        const char* script;
        const char* message;
    } cases[] = {
        {"image", "image: no command given."},
        {"image label x", "image: wrong # args: should be \"image label\"."},
        {"image rename", "image: wrong # args: should be \"image rename NAME\"."},
        {"image rename {}", "image: the new name is empty."},
        {"image value 1 2", "image: wrong # args: should be \"image value I J K\"."},
        {"image value 3 0 0", "image: I 3 is out of range 0 to 2."},
        {"image value 0 -1 0", "image: J -1 is out of range 0 to 1."},
        {"image value 0 0 1.5", "image: \"1.5\" is not a whole number."},
        {"image value 0 0 99999999999999999999", "image: \"99999999999999999999\" is not a whole number."},
        {"image touch x", "image: \"x\" is not a whole number."},
        {"image save {}", "image: The file has no name."},
        {"image save /tmp/x.nrrd", "image: /tmp/x.nrrd: there is no writer for data files."},
        {"image parameters a/b", "image: no parameter \"a/b\"."},
        {"image materials", nullptr},
        {"map dims", "map: an object of class HxColormap has no voxels."},
        {"map range", "map: an object of class HxColormap has no values."},
        {"map color x", "map: \"x\" is not a number."},
        {"map standard pink", "map: there is no standard map \"pink\"."},
        {"labels.nrrd count 256", "labels.nrrd: label 256 is out of range 0 to 255."},
        {"labels.nrrd ImageData connect nobody", "labels.nrrd: there is no object \"nobody\"."},
        {"labels.nrrd ImageData connect map",
         "labels.nrrd: \"ImageData\" takes HxRegScalarField3; \"map\" is HxColormap."},
        {"labels.nrrd ImageData connect labels.nrrd", "labels.nrrd: an object cannot be its own input."},
        {"module data connect image",
         "module: \"data\" takes HxUniformLabelField3; \"image\" is HxUniformScalarField3."},
        {"module menu setIndex 2", "module: entry 2 is out of range 0 to 1."},
        {"module menu setIndex", "module: wrong # args: should be \"module menu setIndex I\"."},
        {"module buttons hit 2", "module: button 2 is out of range 0 to 1."},
        {"module number setValue 1e3", "module: \"1e3\" is not a whole number."},
        {"module distance setValue nan", "module: \"nan\" is not a number."},
        {"module menu",
         "module: no command for the port; it knows: menu getIndex, menu setIndex I, menu getValue, "
         "menu setValue I."},
        {"module number spin",
         "module: port \"number\" has no command \"spin\"; it knows: number getValue, number "
         "setValue N."},
        {"lines line 1", "lines: line 1 is out of range 0 to 0."},
        {"sheet cell 0 0", "sheet: column 0 is out of range: there are none."},
    };
    for (const auto& c : cases) {
        const std::string result = eval(c.script);
        if (c.message)
            EXPECT_EQ(result, std::string("error: ") + c.message) << c.script;
        else
            EXPECT_EQ(
                result.rfind("error: image: no command \"materials\"; it knows: label, rename, type, ", 0),
                0u)
                << result;
    }
    EXPECT_STREQ(image->getLabel(), "image");
    EXPECT_FALSE(module->menu.isNew());
    EXPECT_EQ(image->parameters.nBundles(), 0);
}

TEST_F(HxObjectScripts, UnknownCommandsNameAlsoTheReportedOnes)
{
    image->getCmdInfo().append("special");
    image->getCmdInfo().append("special");
    EXPECT_EQ(image->getCmdInfo().size(), 1);
    EXPECT_NE(eval("image foo").find("parameters, special."), std::string::npos) << eval("image foo");
    EXPECT_EQ(image->cmdError(HxInterpreter::getTheInterpreter()->tcl(), 2, "fill"), TCL_ERROR);
    EXPECT_STREQ(Tcl_GetStringResult(HxInterpreter::getTheInterpreter()->tcl()),
                 "wrong # args for command \"fill\"");
}

TEST_F(HxObjectScripts, PassesOverAllVoxelsCanBeInterrupted)
{
    HxWorkArea& area = *HxWorkArea::getTheWorkArea();
    area.interruptAfter(1);
    EXPECT_EQ(eval("labels.nrrd count 0"), "error: labels.nrrd: interrupted.");
    EXPECT_EQ(area.busyDepth(), 0);
    EXPECT_EQ(eval("labels.nrrd count 0"), "12") << "the request is over";
    const float area0 = labels->getSurfaceArea(0);
    EXPECT_GT(area0, 0);
    area.interruptAfter(1);
    EXPECT_EQ(labels->getSurfaceArea(0), 0);
    EXPECT_EQ(labels->getSurfaceArea(0), area0);
}

TEST_F(HxObjectScripts, ScriptsHearOfMissingMemoryInASentence)
{
    struct Hungry : HxLineSet
    {
        int parse(Tcl_Interp*, int, char**) override { throw std::bad_alloc(); }
    };
    add(new Hungry, "hungry");
    EXPECT_EQ(eval("hungry go"), "error: hungry: Not enough memory.");
}

TEST_F(HxObjectScripts, AButtonCanBePressedBeforeItHasAText)
{
    module->buttons.hit(5);
    EXPECT_EQ(module->buttons.getIndex(), 5);
    EXPECT_TRUE(module->buttons.isNew());
    module->buttons.hit(-1);
    EXPECT_EQ(module->buttons.getIndex(), 5);
    EXPECT_EQ(module->buttons.getNum(), 2);
}

TEST_F(HxObjectScripts, TouchAndParametersTellTheListeners)
{
    std::vector<unsigned int> masks;
    QObject::connect(image, &HxData::dataObjectTouched, image,
                     [&](unsigned int mask) { masks.push_back(mask); });
    eval("image touch; image touch 4; image parameters a 1; image parameters a; image parameters a x");
    EXPECT_EQ(masks, (std::vector<unsigned int>{0xFFFFFFFFu, 4, 1}));
}

TEST_F(HxObjectScripts, SavingKeepsTheNameAndWritesTheOwnFormUnderAnySuffix)
{
    std::string written;
    bool inOwnForm = true;
    HxFileAccess::setWriter([&](HxData*, const char* path, HxFileAccess::Form form, McString& error) {
        inOwnForm = form == HxFileAccess::Form::own;
        written = path;
        error = McString(path) + ": No.";
        return std::string(path).find("bad") == std::string::npos;
    });
    const QTemporaryDir folder;
    const std::string path = folder.filePath("a.nrrd").toStdString();
    EXPECT_STREQ(image->getFilename(), "image") << "the label stands in";
    EXPECT_EQ(eval(("image save " + path).c_str()), "");
    EXPECT_EQ(image->getFilename(), path);
    EXPECT_FALSE(inOwnForm);
    EXPECT_EQ(eval(("image save " + folder.filePath("bad").toStdString()).c_str()),
              "error: image: " + folder.filePath("bad").toStdString() + ": No.");
    EXPECT_EQ(image->getFilename(), path);

    const std::string odd = folder.filePath("brain.intpol").toStdString();
    EXPECT_TRUE(labels->writeVorelMeshBinary(odd.c_str()));
    EXPECT_EQ(written, odd);
    EXPECT_TRUE(inOwnForm);
    EXPECT_FALSE(labels->hasFile());

    std::string console;
    HxMessage::setSink([&](const char* line) { console += line; });
    EXPECT_FALSE(labels->writeVorelMeshBinary((folder.path().toStdString() + "/bad").c_str()));
    HxMessage::setSink(nullptr);
    EXPECT_NE(console.find(": No."), std::string::npos);
}

TEST_F(HxObjectScripts, LoadingNamesTheObjectAndTurnsExceptionsIntoReports)
{
    HxFileAccess::setReader([](const McDArray<McString>& paths, bool, McString& error) -> HxData* {
        if (paths[0] == "large") throw std::bad_alloc();
        if (paths[0] == "throws") throw McException("Not enough memory.");
        error = "bad: no image.";
        return paths[0] == "bad" ? nullptr : new HxLineSet;
    });
    McString error;
    const McHandle<HxData> loaded(HxFileAccess::load({McString("/data/some folder/")}, false, error));
    ASSERT_NE(loaded.get(), nullptr);
    EXPECT_STREQ(loaded->getLabel(), "some folder");
    EXPECT_EQ(HxFileAccess::load({McString("bad")}, false, error), nullptr);
    EXPECT_EQ(error, "bad: no image.");
    EXPECT_EQ(HxFileAccess::load({McString("throws")}, false, error), nullptr);
    EXPECT_EQ(error, "throws: Not enough memory.");
    EXPECT_EQ(HxFileAccess::load({McString("large")}, false, error), nullptr);
    EXPECT_EQ(error, "large: there is not enough memory.");
    EXPECT_EQ(HxFileAccess::load({}, false, error), nullptr);
}

TEST_F(HxObjectScripts, ColormapsLookUpAndCrossAFile)
{
    HxColormap map;
    for (int i = 0; i < 256; i++)
        EXPECT_EQ(map.packedColor(static_cast<float>(i) / 255),
                  static_cast<unsigned int>(i) * 0x01010100u + 255u);
    map.setTable({{1, 0, 0, 1}, {0, 0, 1, 0.5f}});
    map.setUnderflow({0, 0, 0, 0});
    map.setOverflow({1, 1, 1, 1});
    EXPECT_EQ(map.packedColor(-0.001f), 0u);
    EXPECT_EQ(map.packedColor(1.001f), 0xFFFFFFFFu);
    EXPECT_EQ(map.packedColor(NAN), 0u);
    EXPECT_EQ(map.packedColor(0), 0xFF0000FFu);
    EXPECT_EQ(map.packedColor(1), 0x0000FF80u);
    EXPECT_EQ(map.packedColor(0.5f), 0x800080BFu);

    const QTemporaryDir folder;
    const std::string path = folder.filePath("two.colors").toStdString();
    McString error;
    ASSERT_TRUE(map.save(path.c_str(), error)) << error.c_str();
    const McHandle<HxData> loaded(HxFileAccess::load({McString(path)}, false, error));
    ASSERT_NE(loaded.get(), nullptr) << error.c_str();
    for (const float u : {-1.f, 0.f, 0.3f, 0.77f, 1.f, 2.f})
        EXPECT_EQ(static_cast<HxColormap&>(*loaded).packedColor(u), map.packedColor(u));

    for (const char* name : {"two.nrrd", "two.NII.GZ", "two.vtk"}) {
        const std::string volume = folder.filePath(name).toStdString();
        EXPECT_FALSE(map.save(volume.c_str(), error)) << "the next load would take it for an image";
        EXPECT_FALSE(std::ifstream(volume).good());
    }
    EXPECT_STREQ(map.getFilename(), path.c_str());

    std::ofstream(path, std::ios::app) << "0.1 0.2 2 1\n";
    EXPECT_FALSE(map.readFile(path.c_str(), error));
    EXPECT_EQ(error, McString(path) + ": line 7 is no color of four numbers from 0 to 1.");
    EXPECT_EQ(map.numEntries(), 2);
    EXPECT_FALSE(map.save("/nowhere/x.colors", error));

    const McHandle<HxColormap> even(HxColormap::createStandard("perceptual"));
    for (int i = 1; i < 256; i++) {
        const auto luma = [&](int at) {
            const HxColormap::Color c = even->entry(at);
            return 0.2126 * std::pow(c.r, 2.2) + 0.7152 * std::pow(c.g, 2.2) + 0.0722 * std::pow(c.b, 2.2);
        };
        EXPECT_GE(luma(i), luma(i - 1) - 1e-3) << "a grey print keeps the order at " << i;
    }
}

TEST_F(HxObjectScripts, SpreadSheetsConvertCellsAndSaveAsCommaSeparatedText)
{
    const int name = sheet->addColumn("name, unit", HxSpreadSheet::ColumnType::String);
    const int row = sheet->addRow();
    const int volume = sheet->addColumn("volume", HxSpreadSheet::ColumnType::Float);
    const int voxels = sheet->addColumn("voxels", HxSpreadSheet::ColumnType::Int);
    sheet->setText(name, row, "say \"hi\"");
    sheet->setFloat(volume, row, 0.1);
    sheet->setFloat(voxels, row, 2.6);
    EXPECT_EQ(sheet->number(voxels, row), 3);
    EXPECT_EQ(sheet->number(name, row), 0);
    EXPECT_EQ(eval("sheet cell 1 0"), "0.1");
    sheet->addRow();

    const QTemporaryDir folder;
    const std::string path = folder.filePath("a.csv").toStdString();
    EXPECT_EQ(eval(("sheet save " + path).c_str()), "");
    std::stringstream text;
    text << std::ifstream(path).rdbuf();
    EXPECT_EQ(text.str(), "\"name, unit\",volume,voxels\n\"say \"\"hi\"\"\",0.1,3\n,0,0\n");
}

TEST(HxLineSetSpacing, IsTheMeanSegmentLength)
{
    HxLineSet lines;
    const int points[3] = {lines.addPoint(McVec3f(0, 0, 0)), lines.addPoint(McVec3f(3, 4, 0)),
                           lines.addPoint(McVec3f(3, 4, 1))};
    const int wrong[2] = {0, 3};
    EXPECT_EQ(lines.addLine(1, points), 0);
    EXPECT_EQ(lines.addLine(3, points), 1);
    EXPECT_EQ(lines.addLine(2, wrong), -1);
    EXPECT_EQ(lines.getAveragePointSpacing(0), 0);
    EXPECT_EQ(lines.getAveragePointSpacing(1), 3);
    lines.removeLine(0);
    EXPECT_EQ(lines.lineLength(0), 3);
    EXPECT_EQ(mcinterface_cast<HxLineSetInterface>(&lines)->numLines(), 1);
}
