#include "hx/HxOrientation.h"
#include "hx/HxParamBundle.h"
#include "hx/HxParamPath.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <string>

namespace {

std::string listing(const HxParamBundle& bundle, int depth = 0)
{
    std::string text;
    const std::string indent(2 * depth, ' ');
    for (int i = 0; i < bundle.nParameters(); i++) {
        const HxParameter& p = *bundle.parameter(i);
        text += indent + p.getName() + ":" + std::to_string(p.primType()) + "=" + p.text().str() + "\n";
    }
    for (int i = 0; i < bundle.nBundles(); i++)
        text += indent + bundle.bundle(i)->getName() + "/\n" + listing(*bundle.bundle(i), depth + 1);
    return text;
}

} // namespace

TEST(HxParameterNames, KeepLegalBytesTurnBlanksAndDropTheRest)
{
    const struct
    {
        const char* given;
        const char* legal;
    } cases[] = {
        {"Liver", "Liver"},
        {"Left Lung", "Left_Lung"},
        {"a-b_c.9", "a-b_c.9"},
        {"Niere (li.)", "Niere_li."},
        {"M\xc3\xbcll/er", "Mller"},
        {"\t\n", ""},
        {"", ""},
        {"  ", "__"},
    };
    for (const auto& c : cases) {
        EXPECT_STREQ(HxParameter(c.given).getName(), c.legal) << '"' << c.given << '"';
        HxParamBundle bundle("x");
        bundle.setName(c.given);
        EXPECT_STREQ(bundle.getName(), c.legal);
    }
}

TEST(HxParamBundleMaterials, NewcomersAndRenamedOnesGetANumber)
{
    HxParamBundle root;
    HxParamBundle* materials = root.materials();
    EXPECT_EQ(materials, root.materials());
    for (int i = 0; i < 3; i++) materials->insert(new HxParamBundle("Liver"));
    materials->insert(new HxParamBundle("Liver3"));
    EXPECT_EQ(listing(*materials), "Liver/\nLiver2/\nLiver3/\nLiver32/\n");

    materials->bundle(3)->setName("Liver2");
    EXPECT_STREQ(materials->bundle(3)->getName(), "Liver22");
    materials->bundle(1)->setName("Liver2");
    EXPECT_STREQ(materials->bundle(1)->getName(), "Liver2") << "its own name is not taken";
}

TEST(HxParamBundleInsert, ReplacesElsewhereAndMovesFromAnotherBundle)
{
    HxParamBundle root;
    root.set("a", 1);
    root.set("b", 2);
    root.bundle("c", 1)->set("inner", 3);
    root.insert(new HxParameter("a", "new"));
    EXPECT_EQ(listing(root), "b:2=2\na:10=new\nc/\n  inner:2=3\n");

    root.insert(new HxParamBundle("b"), 0);
    EXPECT_EQ(listing(root), "a:10=new\nb/\nc/\n  inner:2=3\n") << "a bundle replaces a value of its name";

    HxParamBase* inner = root.bundle("c", 0)->find("inner");
    root.insert(inner, 0);
    EXPECT_EQ(inner->parent(), &root);
    EXPECT_EQ(listing(root), "inner:2=3\na:10=new\nb/\nc/\n");
}

TEST(HxParamBundleRemove, FixedEntriesStayUntilTheFlagIsCleared)
{
    HxParamBundle materials("Materials");
    auto* exterior = new HxParamBundle("Exterior");
    exterior->setFlag(4, 1);
    materials.insert(exterior);
    HxParamBundle stranger("Exterior");

    EXPECT_FALSE(materials.remove(exterior));
    EXPECT_FALSE(materials.remove(&stranger));
    EXPECT_FALSE(materials.remove("Nobody"));
    EXPECT_EQ(materials.nBundles(), 1);
    const std::unique_ptr<HxParamBase> copy(materials.clone());
    EXPECT_TRUE(copy->asBundle()->bundle(0)->testFlag(4)) << "a clone keeps the flag";

    exterior->setFlag(4, 0);
    EXPECT_TRUE(materials.remove(exterior));
    EXPECT_EQ(materials.nBundles(), 0);
}

TEST(HxParamBundleOrder, IndexAndRelocate)
{
    HxParamBundle materials("Materials");
    for (const char* name : {"a", "b", "c", "d"}) materials.insert(new HxParamBundle(name));
    EXPECT_TRUE(materials.relocate(0, 2));
    EXPECT_EQ(listing(materials), "b/\nc/\na/\nd/\n");
    EXPECT_TRUE(materials.relocate(materials.bundle("d", 0), 0));
    EXPECT_EQ(listing(materials), "d/\nb/\nc/\na/\n");
    EXPECT_TRUE(materials.relocate(0, 99)) << "limited to the end";
    EXPECT_EQ(listing(materials), "b/\nc/\na/\nd/\n");
    EXPECT_FALSE(materials.relocate(4, 0));
    EXPECT_EQ(materials.index("a"), 2);
    EXPECT_EQ(materials.index("nobody"), -1);
    EXPECT_EQ(materials.bundle(-1), nullptr);
    EXPECT_EQ(materials.bundle(4), nullptr);
}

TEST(HxParamBundleReading, NumbersConvertAndFailuresLeaveTheOutputAlone)
{
    HxParamBundle p;
    const int ints[3] = {1, -2, 2000000000};
    const double doubles[2] = {2.75, 1e300};
    p.set("ints", 3, ints);
    p.set("doubles", 2, doubles);
    p.set("text", "7");

    float f[3] = {9, 9, 9};
    EXPECT_EQ(p.findReal("ints", 3, f), 1);
    EXPECT_EQ(f[1], -2);
    EXPECT_EQ(p.findReal("ints", 4, f), 0);
    f[0] = 9;
    EXPECT_EQ(p.findReal("text", 1, f), 0) << "a string is no number";
    EXPECT_EQ(p.findReal("absent", 1, f), 0);
    EXPECT_EQ(f[0], 9);

    int n = 5;
    EXPECT_EQ(p.findNum("doubles", n), 1);
    EXPECT_EQ(n, 2);
    int both[2];
    EXPECT_EQ(p.findNum("doubles", 2, both), 1);
    EXPECT_EQ(both[1], std::numeric_limits<int>::max()) << "limited, not undefined";

    McString text("old");
    EXPECT_EQ(p.findString("ints", text), 0);
    EXPECT_EQ(text, "old");
    EXPECT_EQ(p.findString("text", text), 1);
    EXPECT_EQ(text, "7");
}

TEST(HxParamBundleReading, ColorsInAllTheirForms)
{
    const auto colorOf = [](const char* text) {
        HxParamBundle m("m");
        m.set("Color", text);
        float rgb[3] = {-1, -1, -1};
        const int found = m.findColor(rgb);
        return found ? std::to_string(rgb[0]) + std::to_string(rgb[1]) + std::to_string(rgb[2])
                     : std::string("none");
    };
    EXPECT_EQ(colorOf("0.64 0 0.8"), std::to_string(0.64f) + std::to_string(0.f) + std::to_string(0.8f));
    EXPECT_EQ(colorOf("  1\t0  0.5 "), std::to_string(1.f) + std::to_string(0.f) + std::to_string(.5f));
    for (const char* bad : {"", "red", "0.1 0.2", "0.1 0.2 x", "0.1 0.2 0.3 0.4", "nan 0 0", "0,1 0 0"})
        EXPECT_EQ(colorOf(bad), "none") << bad;

    HxParamBundle m("m");
    const double doubles[3] = {0.25, 0.5, 0.75};
    m.set("Color", 3, doubles);
    float rgb[3];
    EXPECT_EQ(m.findColor(rgb), 1);
    EXPECT_EQ(rgb[2], 0.75f);
    const float set[3] = {1, 0.5f, 0};
    m.setColor(set);
    EXPECT_EQ(m.parameter("Color")->primType(), 3);
    EXPECT_EQ(m.findColor(rgb), 1);
    EXPECT_EQ(rgb[0], 1);
}

TEST(HxParamBundleCopy, IsDeepAndSurvivesAnInnerSource)
{
    HxParamBundle tree;
    tree.bundle("Seeds", 1)->bundle("Slice0001", 1)->bundle("S0001x0002", 1)->set("v", 4);
    HxParamBundle clone(tree);
    tree.bundle("Seeds", 0)->set("later", 1);
    EXPECT_EQ(listing(clone), "Seeds/\n  Slice0001/\n    S0001x0002/\n      v:2=4\n");
    EXPECT_EQ(clone.bundle("Seeds", 0)->parent(), &clone);

    clone.copy(*clone.bundle("Seeds", 0));
    EXPECT_EQ(listing(clone), "Slice0001/\n  S0001x0002/\n    v:2=4\n");
    clone.copy(clone);
    EXPECT_EQ(clone.nBundles(), 1);
}

TEST(HxParameterText, RoundTripsEveryCodeExactly)
{
    const float floats[4] = {0.1f, 1e-40f, 3.4028235e38f, -0.0f};
    const double doubles[3] = {0.1, 5e-324, 1.7976931348623157e308};
    const int ints[2] = {std::numeric_limits<int>::min(), std::numeric_limits<int>::max()};
    HxParameter values[] = {{"f", 4, floats}, {"d", 3, doubles}, {"i", 2, ints}, {"s", "  {odd \" $text"}};
    for (const HxParameter& value : values) {
        HxParameter copy(value);
        ASSERT_TRUE(copy.setText(value.text()));
        EXPECT_EQ(copy.primType(), value.primType());
        EXPECT_EQ(copy.dim(), value.dim());
        EXPECT_EQ(copy.text(), value.text());
        for (int i = 0; i < value.dim(); i++) EXPECT_EQ(copy.getReal(i), value.getReal(i));
    }
}

TEST(HxParamPath, NewValuesTakeTheCodeOfTheirForm)
{
    const struct
    {
        const char* text;
        int code;
        int dim;
    } cases[] = {{"3", 2, 1},          {"1 -2 3", 2, 3},     {"1.5", 3, 1},        {"1 2.5", 3, 2},
                 {"3000000000", 3, 1}, {"16777217.5", 4, 1}, {"0.1", 3, 1},        {"0.1234567890123", 4, 1},
                 {"1e+300 0.5", 4, 2}, {"", 10, 1},          {"two words", 10, 1}, {"1 two", 10, 1},
                 {"inf", 10, 1},       {"0x10", 10, 1}};
    for (const auto& c : cases) {
        HxParamBundle root;
        McString error;
        ASSERT_TRUE(hxWriteParameter(root, "Materials/Liver/x", c.text, error)) << c.text;
        const HxParameter* made = root.materials()->bundle("Liver", 0)->parameter("x");
        EXPECT_EQ(made->primType(), c.code) << c.text;
        EXPECT_EQ(made->dim(), c.dim) << c.text;
        if (c.code == HxParameter::kDouble) {
            EXPECT_EQ(made->text(), c.text) << "no digit is lost";
        }
    }
}

TEST(HxParamPath, ExistingValuesKeepTheirCodeAndBadPathsChangeNothing)
{
    HxParamBundle root;
    const float color[3] = {1, 0, 0};
    root.materials()->bundle("Liver", 1)->setColor(color);
    root.set("count", 3);
    McString text;
    EXPECT_TRUE(hxWriteParameter(root, "/Materials//Liver/Color", "0 1 0", text));
    EXPECT_EQ(root.materials()->bundle(0)->parameter("Color")->primType(), 3);

    const std::string before = listing(root);
    for (const char* path : {"", "/", "Materials", "count/x", "Materials/Liver/Color/r", "new/(/x"})
        EXPECT_FALSE(hxWriteParameter(root, path, "1", text)) << path;
    EXPECT_FALSE(hxWriteParameter(root, "count", "2.5", text));
    EXPECT_EQ(text, "\"count\" takes whole numbers, not \"2.5\"");
    EXPECT_FALSE(hxWriteParameter(root, "count", "", text));
    EXPECT_EQ(listing(root), before);

    EXPECT_TRUE(hxReadParameter(root, "", text));
    EXPECT_EQ(text, "count Materials");
    EXPECT_TRUE(hxReadParameter(root, "Materials/Liver/Color", text));
    EXPECT_EQ(text, "0 1 0");
    EXPECT_FALSE(hxReadParameter(root, "Materials/Spleen", text));
    EXPECT_FALSE(hxReadParameter(root, "count/x", text));
}

TEST(HxOrientation, WritesOnlyWhatIsTurnedAndCopiesAllDigits)
{
    HxParamBundle from, to;
    const double spacing[3] = {0.48828125123456, 1, 2};
    const double place[3] = {0.1, 0.2, 0.30000000000000004};
    from.set("Origin", 3, place);
    from.set("Spacing", 3, spacing);
    HxOrientation::copy(from, to);
    EXPECT_EQ(listing(to), listing(from)) << "not turned, and yet more than the box tells";
    from.clear();

    HxOrientation turned{{0, -1, 0, 1, 0, 0, 0, 0, 1}, {1.5, -2, 1e-9}};
    turned.write(from);
    HxOrientation::copy(from, to);
    HxOrientation read;
    ASSERT_TRUE(HxOrientation::read(to, read));
    EXPECT_EQ(listing(to), listing(from)) << "entries that the source lacks go";
    EXPECT_EQ(read.directions[1], -1);
    EXPECT_EQ(read.origin[2], 1e-9);

    HxOrientation::copy(HxParamBundle(), to);
    EXPECT_EQ(to.nParameters(), 0);
    EXPECT_FALSE(HxOrientation::read(to, read));
    EXPECT_TRUE(read.isIdentity());
}
