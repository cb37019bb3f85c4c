// Files as other programs write them, put together byte by byte.

#include "FileTest.h"

#include <algorithm>
#include <cstdint>
#include <zlib.h>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

const std::string kNrrd = "NRRD0003\n# made by hand\ncontent: test\n";

template <class T>
std::string bigEndian(const std::vector<T>& values)
{
    std::string bytes;
    for (T v : values) {
        std::string word(reinterpret_cast<const char*>(&v), sizeof(T));
        std::reverse(word.begin(), word.end());
        bytes += word;
    }
    return bytes;
}

std::string zlibPacked(const std::string& bytes)
{
    uLongf size = compressBound(bytes.size());
    std::string packed(size, 0);
    compress(reinterpret_cast<Bytef*>(packed.data()), &size, reinterpret_cast<const Bytef*>(bytes.data()),
             bytes.size());
    packed.resize(size);
    return packed;
}

struct Nifti
{
    std::vector<std::int16_t> dim{3, 3, 2, 1};
    std::int16_t datatype = 4;
    float slope = 0;
    float intercept = 0;

    std::string bytes(const std::string& voxels, const char* magic = "n+1") const
    {
        std::string h(352, 0);
        const auto put = [&](std::size_t at, auto v) { std::memcpy(h.data() + at, &v, sizeof v); };
        put(0, std::int32_t(348));
        for (std::size_t i = 0; i < 8; ++i) put(40 + 2 * i, i < dim.size() ? dim[i] : std::int16_t(1));
        put(70, datatype);
        put(72, std::int16_t(datatype == 2 ? 8 : datatype == 4 ? 16 : datatype == 128 ? 24 : 32));
        for (std::size_t i = 0; i < 8; ++i) put(76 + 4 * i, float(i == 0 ? 1 : 1 + 0.5 * double(i)));
        put(108, magic[1] == '+' ? 352.0F : 0.0F);
        put(112, slope);
        put(116, intercept);
        put(123, std::int8_t(2));  // millimetres
        put(254, std::int16_t(1)); // sform
        const float rows[12] = {1.5F, 0, 0, -10, 0, 2, 0, -20, 0, 0, 2.5F, 30};
        std::memcpy(h.data() + 280, rows, sizeof rows);
        std::memcpy(h.data() + 344, magic, 4);
        return h + voxels;
    }
};

class ForeignFiles : public FileTest
{
};

TEST_F(ForeignFiles, NrrdInTextInBigEndianAndWithDataElsewhere)
{
    const Field text =
        load(store("t.nrrd", kNrrd + "type: float\ndimension: 2\nsizes: 3 2\nspacings: 0.5 -2\n"
                                     "axis mins: 1 2\nencoding: ascii\n\n1 2.5 -3e2\n+4, 5\r\n6"));
    ASSERT_TRUE(text) << error;
    EXPECT_THAT(voxels<float>(text), ElementsAre(1, 2.5F, -300, 4, 5, 6));
    EXPECT_THAT(boxOf(text), ElementsAre(1, 2, 2, 4, 0, 1));

    const std::string shape = "type: short\ndimension: 3\nsizes: 2 1 3\nendian: big\nencoding: raw\n";
    const std::vector<short> values{1, -2, 300, -400, 5, 6};
    const Field big = load(store("b.nrrd", kNrrd + shape + "\n" + bigEndian(values)));
    ASSERT_TRUE(big) << error;
    EXPECT_EQ(voxels<short>(big), values);

    store("data/s1.raw", "xx" + bigEndian<short>({1, -2}));
    store("data/s2.raw", "xx" + bigEndian<short>({300, -400}));
    store("data/s3.raw", "xx" + bigEndian<short>({5, 6}));
    for (const char* files : {"byte skip: 2\ndata file: data/s%d.raw 1 3 1\n",
                              "byte skip: -1\ndata file: LIST\ndata/s1.raw\ndata/s2.raw\ndata/s3.raw\n"}) {
        const Field several = load(store("several.nhdr", kNrrd + shape + files));
        ASSERT_TRUE(several) << error;
        EXPECT_EQ(voxels<short>(several), values);
    }
}

TEST_F(ForeignFiles, WideAndNarrowIntegersGoToTheSmallestTypeThatHoldsThem)
{
    const auto file = [&](const char* type, const std::string& data, int n) {
        return store("w.nrrd", kNrrd + "type: " + type + "\ndimension: 3\nsizes: " + std::to_string(n) +
                                   " 1 1\nendian: little\nencoding: raw\n\n" + data);
    };
    const auto code = [&](const std::string& name) {
        const Field field = load(name);
        return field ? field->lattice()->primType() : -1;
    };
    EXPECT_EQ(1, code(file("signed char", "\x80\x7f", 2)));
    EXPECT_EQ(2, code(file("int64", raw<std::int64_t>({-2147483648LL, 2147483647LL}), 2)));
    EXPECT_EQ(8, code(file("int64", raw<std::int64_t>({0, 4294967295LL}), 2)));
    EXPECT_EQ(8, code(file("uint64", raw<std::uint64_t>({3000000000ULL}), 1)));
    EXPECT_EQ(4, code(file("int64", raw<std::int64_t>({-1, 1LL << 40}), 2)));
    EXPECT_EQ(-1, code(file("int64", raw<std::int64_t>({0, 0, (1LL << 53) + 1}), 3)));
    EXPECT_THAT(error, HasSubstr("w.nrrd: the 64-bit value 9007199254740993 at voxel (2, 0, 0)"));
    const Field narrow = load(file("int8", "\x80\x7f", 2));
    EXPECT_THAT(voxels<short>(narrow), ElementsAre(-128, 127));
}

TEST_F(ForeignFiles, OfTwoNiftiMatricesTheSformHolds)
{
    std::string bytes = Nifti().bytes(raw(std::vector<short>(6)));
    const auto put = [&](std::size_t at, auto v) { std::memcpy(bytes.data() + at, &v, sizeof v); };
    put(252, std::int16_t(1)); // a qform that mirrors z and lies elsewhere
    put(76, -1.0F);
    put(268, 500.0F);
    const Field both = load(store("both.nii", bytes));
    ASSERT_TRUE(both) << error;
    EXPECT_THAT(boxOf(both), ElementsAre(10, 13, 20, 22, 30, 32.5F));
    EXPECT_THAT(numbers(both, "Directions", 9), ElementsAre(-1, 0, 0, 0, -1, 0, 0, 0, 1));

    put(284, 0.75F); // shears x along y
    const Field skew = load(store("skew.nii", bytes));
    ASSERT_TRUE(skew) << error;
    const auto directions = numbers(skew, "Directions", 9);
    EXPECT_NE(directions[1], 0);
    ASSERT_TRUE(save(skew, path("again.nii"))) << error;
    const Field again = load(path("again.nii"));
    ASSERT_TRUE(again) << error;
    const auto kept = numbers(again, "Directions", 9);
    for (std::size_t i = 0; i < 9; ++i) EXPECT_NEAR(kept[i], directions[i], 1e-6) << i;

    for (std::size_t row = 0; row < 3; ++row) put(280 + 16 * row, 0.0F); // maps the volume onto a plane
    const Field flat = load(store("flat.nii", bytes));
    ASSERT_TRUE(flat) << error;
    EXPECT_NEAR(boxOf(flat)[1] - boxOf(flat)[0], 3, 1e-5) << "then the qform counts";
}

TEST_F(ForeignFiles, NiftiGeometryAndScaling)
{
    const std::vector<short> values{1, 2, 3, -4, 5, 600};
    const Field plain = load(store("p.nii", Nifti().bytes(raw(values))));
    ASSERT_TRUE(plain) << error;
    EXPECT_EQ(voxels<short>(plain), values);
    EXPECT_THAT(boxOf(plain), ElementsAre(10, 13, 20, 22, 30, 32.5F));
    EXPECT_THAT(numbers(plain, "Directions", 9), ElementsAre(-1, 0, 0, 0, -1, 0, 0, 0, 1));

    const Field same = load(store("i.nii", Nifti{.slope = 1}.bytes(raw(values))));
    EXPECT_EQ(same->lattice()->primType(), 1);
    const Field scaled = load(store("s.nii", Nifti{.slope = 0.5F, .intercept = 10}.bytes(raw(values))));
    ASSERT_TRUE(scaled) << error;
    EXPECT_THAT(voxels<float>(scaled), ElementsAre(10.5F, 11, 11.5F, 8, 12.5F, 310));

    store("two.img", raw(values));
    const Field pair = load(store("two.hdr", Nifti().bytes("", "ni1").substr(0, 348)));
    ASSERT_TRUE(pair) << error;
    EXPECT_EQ(voxels<short>(pair), values);

    const Field oneMore = load(store("4.nii", Nifti{.dim = {4, 3, 2, 1, 1}}.bytes(raw(values))));
    ASSERT_TRUE(oneMore) << error;
    EXPECT_EQ(voxels<short>(oneMore), values);
}

TEST_F(ForeignFiles, MetaImagePackedInTextAndInSlices)
{
    const std::vector<short> values{1, -2, 300, -400, 5, 6};
    const std::string shape = "ObjectType = Image\nNDims = 3\nDimSize = 2 1 3\nElementSpacing = 0.7 2 3\n"
                              "Offset = 1 2 3\nElementType = MET_SHORT\n";
    store("m1.raw", raw<short>({1, -2}));
    store("m2.raw", raw<short>({300, -400}));
    store("m3.raw", raw<short>({5, 6}));
    const std::string rests[] = {
        "ElementDataFile = LOCAL\n" + raw(values),
        "ElementByteOrderMSB = True\nElementDataFile = LOCAL\n" + bigEndian(values),
        "CompressedData = True\nElementDataFile = LOCAL\n" + zlibPacked(raw(values)),
        "BinaryData = False\nElementDataFile = LOCAL\n1 -2 300 -400 5 6\n",
        "ElementDataFile = LIST\nm1.raw\nm2.raw\nm3.raw\n",
        "ElementDataFile = m%d.raw 1 3 1\n",
    };
    for (const std::string& rest : rests) {
        const Field field = load(store("m.mhd", shape + rest));
        ASSERT_TRUE(field) << error;
        EXPECT_EQ(voxels<short>(field), values) << rest;
        EXPECT_THAT(boxOf(field), ElementsAre(1, 1.7F, 2, 4, 3, 9));
    }
}

TEST_F(ForeignFiles, ABrainTemplateLiesWhereItsHeaderSays)
{
    const std::string file = "/usr/share/mricron/templates/ch2.nii.gz";
    ASSERT_TRUE(std::filesystem::exists(file)) << file << " is missing; scripts/setup installs it.";
    const Field brain = load(file);
    ASSERT_TRUE(brain) << error;
    EXPECT_THAT(boxOf(brain), ElementsAre(90, 270, 125, 341, -71, 109));
}

} // namespace
