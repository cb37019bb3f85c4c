#include "hx/HxHistogramInterface.h"
#include "hx/HxMatDatabase.h"
#include "hx/HxObjectPool.h"
#include "hx/HxPackage.h"
#include "hx/HxPreferences.h"
#include "hx/HxSettingsMgr.h"
#include "hx/HxStackedLabelField3.h"
#include "hx/HxStackedScalarField3.h"
#include "hx/HxUniformLabelField3.h"
#include "hx/HxUniformScalarField3.h"
#include "hx/HxValueRange.h"
#include "mc/McException.h"
#include "mc/McMemoryException.h"
#include "mc/McTmpDir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

namespace {

constexpr int kAllTypes[] = {kMcUnsignedChar, kMcShort,         kMcInt,        kMcFloat,
                             kMcDouble,       kMcUnsignedShort, kMcUnsignedInt};

void setThreads(int n)
{
    HxPreferences preferences = HxSettingsMgr::getInstance()->getPreferences();
    preferences.numThreads = n;
    HxSettingsMgr::getInstance()->setPreferences(preferences, false);
}

/// Any bit patterns for whole numbers; for the others some infinities and not-a-numbers among them.
template <class T>
void fillRandom(std::vector<T>& values, std::mt19937& random)
{
    for (T& v : values) {
        if constexpr (std::is_integral_v<T>)
            v = static_cast<T>(random());
        else
            v = static_cast<T>(std::ldexp(static_cast<double>(static_cast<int>(random())),
                                          static_cast<int>(random() % 60) - 30));
    }
    if constexpr (std::is_floating_point_v<T>) {
        for (std::size_t i = 0; i < values.size(); i += 7)
            values[i] = i % 3 == 0   ? std::numeric_limits<T>::quiet_NaN()
                        : i % 3 == 1 ? std::numeric_limits<T>::infinity()
                                     : -std::numeric_limits<T>::infinity();
    }
}

template <class T>
std::pair<double, double> plainRange(const std::vector<T>& values)
{
    double min = std::numeric_limits<double>::infinity(), max = -min;
    for (const T v : values) {
        if (!std::isfinite(static_cast<double>(v))) continue;
        min = std::min(min, static_cast<double>(v));
        max = std::max(max, static_cast<double>(v));
    }
    return min > max ? std::pair(0.0, 0.0) : std::pair(min, max);
}

float plainSurface(const HxLabelField3& field, int material)
{
    const unsigned long* n = field.labelLattice()->dims();
    const McVec3f size = field.coords()->voxelSize();
    const float weights[3] = {size.z / size.x, size.z / size.y, 1};
    const auto labelAt = [&](McVec3i p) {
        for (int a = 0; a < 3; a++)
            if (p[a] < 0 || p[a] >= static_cast<int>(n[a])) return -1;
        return static_cast<int>(field.labelLattice()->getValue(p));
    };
    double area = 0;
    for (int k = 0; k < static_cast<int>(n[2]); k++)
        for (int j = 0; j < static_cast<int>(n[1]); j++)
            for (int i = 0; i < static_cast<int>(n[0]); i++)
                for (int axis = 0; axis < 3; axis++)
                    for (const int step : {-1, 1}) {
                        McVec3i other(i, j, k);
                        other[axis] += step;
                        if (labelAt(McVec3i(i, j, k)) == material && labelAt(other) != material)
                            area += weights[axis];
                    }
    return static_cast<float>(area);
}

} // namespace

TEST(HxFieldRange, MatchesAPlainLoopForAllTypesAndThreads)
{
    std::mt19937 random(7);
    for (const int type : kAllTypes) {
        for (const unsigned long nx : {1ul, 3ul, 17ul, 128ul, 1001ul}) {
            mcDispatch(type, [&](auto* tag) {
                using T = std::remove_pointer_t<decltype(tag)>;
                const unsigned long dims[3] = {nx, 3, 1};
                std::vector<T> values(nx * 3);
                fillRandom(values, random);
                HxUniformScalarField3 field(dims, type, values.data());
                double min, max;
                field.getRange(min, max);
                EXPECT_EQ(std::pair(min, max), plainRange(values)) << mcElementName(type) << " of " << nx;
                for (const int threads : {1, 2, 5}) {
                    min = max = 0;
                    hxValueRange(values.data(), values.size(), type, threads, min, max);
                    EXPECT_EQ(std::pair(min, max), plainRange(values)) << mcElementName(type) << " of " << nx;
                }
            });
        }
    }
}

TEST(HxFieldRange, HoldsUntilTheValuesAreTouched)
{
    const unsigned long dims[3] = {4, 1, 1};
    float values[4] = {1, NAN, 3, 2};
    HxUniformScalarField3 field(dims, kMcFloat, values);
    int touched = 0;
    QObject::connect(&field, &HxData::dataObjectTouched, &field, [&] { touched++; });
    const auto max = [&] {
        float low, high;
        field.getRange(low, high);
        return high;
    };
    EXPECT_EQ(max(), 3);
    values[0] = 10;
    EXPECT_EQ(max(), 3);
    field.touch(HxObject::kParametersChanged);
    EXPECT_EQ(max(), 3) << "parameters have no part in it";
    field.touch(4);
    EXPECT_EQ(max(), 10);
    EXPECT_EQ(touched, 2);

    const unsigned int number = field.touchNumber();
    field.touchMinMax(0, 255, 1);
    EXPECT_EQ(max(), 255) << "the range that it is told holds";
    field.touchMinMax(0, -1, 0);
    EXPECT_EQ(max(), 10);
    EXPECT_EQ(touched, 2) << "no signal";
    EXPECT_EQ(field.touchNumber(), number + 2);

    for (float& v : values) v = NAN;
    field.touch();
    EXPECT_EQ(max(), 0) << "without a value the range is 0 to 0";
}

TEST(HxFieldHistogram, CountsEveryFiniteValueOnce)
{
    setThreads(2);
    std::mt19937 random(11);
    for (const int type : kAllTypes) {
        mcDispatch(type, [&](auto* tag) {
            using T = std::remove_pointer_t<decltype(tag)>;
            const unsigned long dims[3] = {50, 40, 3};
            std::vector<T> values(6000);
            fillRandom(values, random);
            HxUniformScalarField3 field(dims, type, values.data());
            auto* interface = mcinterface_cast<HxHistogramInterface>(&field);
            ASSERT_NE(interface, nullptr);
            EXPECT_EQ(interface->owner(), &field);
            const McHistogram histogram = interface->getHistogram(120);
            ASSERT_EQ(histogram.numBins(), 120) << mcElementName(type);
            unsigned long total = 0;
            for (int bin = 0; bin < 120; bin++) total += histogram.count(bin);
            const long finite = std::count_if(values.begin(), values.end(),
                                              [](T v) { return std::isfinite(static_cast<double>(v)); });
            EXPECT_EQ(total, static_cast<unsigned long>(finite)) << mcElementName(type);
            const auto [min, max] = plainRange(values);
            EXPECT_EQ(histogram.getMin(), static_cast<float>(min));
            EXPECT_EQ(histogram.getMax(), static_cast<float>(max));
        });
    }
}

TEST(HxLatticeMemory, ResizeKeepsTheAddressForAnEqualNumberOfBytes)
{
    const unsigned long dims[3] = {4, 3, 2};
    HxUniformLabelField3 field(dims);
    HxLabelLattice3& lattice = *field.labelLattice();
    lattice.createWeights();
    unsigned char* const labels = lattice.getLabels();
    unsigned char* const weights = lattice.getWeights();
    labels[23] = 9;
    weights[23] = 7;
    lattice.createWeights();
    EXPECT_EQ(lattice.getWeights(), weights) << "existing weights stay";

    lattice.resize(2, 3, 4);
    EXPECT_EQ(lattice.getLabels(), labels);
    EXPECT_EQ(lattice.getWeights(), weights);
    EXPECT_EQ(lattice.getVoxel(McVec3i(1, 2, 3)), 9);

    lattice.resize(5, 3, 4);
    EXPECT_EQ(lattice.getWeights(), nullptr);
    EXPECT_EQ(std::count(lattice.getLabels(), lattice.getLabels() + 60, 0), 60);
    EXPECT_THROW(lattice.resize(1ul << 40, 1ul << 20, 1ul << 20), McMemoryException);
    EXPECT_EQ(lattice.dims()[0], 5u) << "a failure changes nothing";
    EXPECT_NE(lattice.getLabels(), nullptr);
}

TEST(HxLatticeMemory, ViewsAreNeitherFreedNorResized)
{
    short values[6] = {1, 2, 3, 4, 5, 6};
    const unsigned long dims[3] = {3, 2, 1};
    {
        HxUniformScalarField3 field(dims, kMcShort, values);
        EXPECT_EQ(field.lattice()->getVoxel(McVec3i(2, 1, 0)), 6);
        EXPECT_EQ(field.lattice()->getVoxel(McVec3i(3, 0, 0)), 0) << "outside";
        field.lattice()->resize(2, 2, 1);
        EXPECT_NE(field.lattice()->dataPtr(), values);
    }
    EXPECT_EQ(values[5], 6);

    auto* field = new HxRegScalarField3(dims, kMcFloat, 1, nullptr);
    void* detached = field->detachData();
    EXPECT_NE(detached, nullptr);
    delete field;
    std::free(detached);
}

TEST(HxLatticeMemory, ReservedCodesReportThemselvesAndUnknownOnesAreRefused)
{
    const unsigned long dims[3] = {2, 2, 2};
    HxLattice3 reserved(dims, 1, 5, 1, nullptr, true);
    EXPECT_EQ(reserved.primType(), 5);
    EXPECT_EQ(reserved.getVoxel(McVec3i(0, 0, 0)), 0);
    EXPECT_THROW(HxLattice3(dims, 1, 42, 1, nullptr, true), McException);

    float pairs[16] = {1, 2, 3, 4};
    HxLattice3 two(dims, 2, kMcFloat, 1, pairs, false);
    EXPECT_EQ(two.getVoxel(McVec3i(1, 0, 0)), 3) << "the first component";
}

TEST(HxLatticeAccess, KeepsTheOwnerAliveAndLeavesUncountedOnesAlone)
{
    const unsigned long dims[3] = {2, 2, 2};
    const unsigned long other[3] = {2, 2, 1};
    auto* field = new HxUniformLabelField3(dims);
    field->setLabel("held");
    HxObjectPool::getThePool()->addObject(field);
    HxLatticeAccess* access = field->lattice()->access();
    HxObjectPool::getThePool()->removeObject(field);
    EXPECT_EQ(access->rawData(dims), field->lattice()->dataPtr());
    EXPECT_EQ(access->rawData(other), nullptr);
    access->release();

    HxUniformLabelField3 onTheStack(dims);
    onTheStack.lattice()->access()->release();
    EXPECT_EQ(onTheStack.lattice()->dims()[0], 2u);
}

TEST(HxLabelFieldCreate, MakesTheFieldThatFitsTheCoordinates)
{
    const unsigned long dims[3] = {2, 2, 3};
    const float z[3] = {0, 1, 5};
    HxStackedScalarField3 image(dims, kMcShort, z);
    auto* lattice = new HxLabelLattice3(image.coords()->clone());
    EXPECT_EQ(lattice->materials(), nullptr);
    const McHandle<HxLabelField3> field(lattice->create());
    EXPECT_NE(dynamic_cast<HxStackedLabelField3*>(field.get()), nullptr);
    EXPECT_EQ(dynamic_cast<HxUniformLabelField3*>(field.get()), nullptr);
    EXPECT_EQ(lattice->field(), field.get());
    EXPECT_EQ(field->coords()->zPositions()[2], 5);
    ASSERT_EQ(lattice->materials()->nBundles(), 1);
    EXPECT_STREQ(lattice->materials()->bundle(0)->getName(), "Exterior");
    EXPECT_FALSE(lattice->materials()->remove("Exterior")) << "fixed";

    for (McInterface* offered :
         {static_cast<McInterface*>(mcinterface_cast<HxLattice>(field.get())),
          static_cast<McInterface*>(mcinterface_cast<HxLattice3>(field.get())),
          static_cast<McInterface*>(mcinterface_cast<HxLabelLattice3>(field.get())),
          static_cast<McInterface*>(mcinterface_cast<HxLabelLattice>(field.get())),
          static_cast<McInterface*>(mcinterface_cast<HxMutableLabelLattice>(field.get()))}) {
        ASSERT_NE(offered, nullptr);
        EXPECT_EQ(offered->owner(), field.get());
    }
    EXPECT_EQ(mcinterface_cast<HxLabelLattice>(&image), nullptr);
    EXPECT_EQ(mcinterface_cast<HxLattice3>(nullptr), nullptr);
    EXPECT_TRUE(field->getTypeId().isDerivedFrom(McTypeId::of<HxRegScalarField3>()));
    EXPECT_FALSE(field->getTypeId().isDerivedFrom(McTypeId::of<HxUniformLabelField3>()));
}

TEST(HxLatticeCoords, UniformBoxGoesThroughVoxelCentres)
{
    const unsigned long dims[3] = {5, 3, 1};
    HxLatticeCoords coords(1, dims);
    const float box[6] = {-1, 1, 10, 14, 7, 7};
    coords.setBoundingBox(box);
    EXPECT_EQ(coords.position(0, 0, 0), McVec3f(-1, 10, 7));
    EXPECT_EQ(coords.position(4, 2, 0), McVec3f(1, 14, 7));
    EXPECT_EQ(coords.position(1, 1, 0), McVec3f(-0.5f, 12, 7));
    EXPECT_EQ(coords.voxelSize(), McVec3f(0.5f, 2, 0));
    EXPECT_EQ(coords.zPositions(), nullptr);
}

TEST(HxLatticeCoords, StackedPositionsFollowTheBoxAndTheNumberOfSlices)
{
    const unsigned long dims[3] = {2, 2, 4};
    HxLatticeCoords coords(2, dims);
    EXPECT_EQ(coords.zPositions()[3], 3) << "0 to n - 1 at first";
    const float z[4] = {10, 11, 14, 20};
    coords.setZPositions(z);
    EXPECT_EQ(coords.boundingBox()[4], 10);
    EXPECT_EQ(coords.boundingBox()[5], 20);
    EXPECT_EQ(coords.position(1, 1, 2), McVec3f(1, 1, 14));

    const float wider[6] = {0, 1, 0, 1, 0, 5};
    coords.setBoundingBox(wider);
    EXPECT_EQ(std::vector<float>(coords.zPositions(), coords.zPositions() + 4),
              (std::vector<float>{0, 0.5f, 2, 5}));

    const unsigned long sameSlices[3] = {7, 7, 4};
    coords.resize(sameSlices);
    EXPECT_EQ(coords.zPositions()[2], 2);
    const unsigned long more[3] = {7, 7, 6};
    coords.resize(more);
    EXPECT_EQ(coords.zPositions()[2], 2);
    EXPECT_EQ(coords.zPositions()[5], 5);
}

TEST(HxSurfaceArea, MatchesTheFacesOneByOneAndNotTheUnit)
{
    std::mt19937 random(3);
    for (int run = 0; run < 30; run++) {
        const unsigned long dims[3] = {1 + random() % 9, 1 + random() % 9, 1 + random() % 9};
        HxUniformLabelField3 field(dims);
        unsigned char* labels = field.labelLattice()->getLabels();
        for (unsigned long i = 0; i < field.lattice()->numNodes(); i++)
            labels[i] = static_cast<unsigned char>(random() % 3);
        float box[6] = {0, 1.5f, -1, 1, 0, 6};
        field.coords()->setBoundingBox(box);
        for (int material = 0; material < 3; material++)
            EXPECT_NEAR(field.getSurfaceArea(material), plainSurface(field, material),
                        1e-4 * (1 + plainSurface(field, material)))
                << dims[0] << " " << dims[1] << " " << dims[2];
        const float before = field.getSurfaceArea(1);
        for (float& v : box) v *= 1000;
        field.coords()->setBoundingBox(box);
        EXPECT_NEAR(field.getSurfaceArea(1), before, 1e-4 * (1 + before));
    }
    const unsigned long slice[3] = {2, 2, 1};
    HxUniformLabelField3 flat(slice);
    EXPECT_EQ(flat.getSurfaceArea(0), 16) << "a slice without thickness counts as cubes";
    EXPECT_EQ(flat.getSurfaceArea(300), 0);
}

TEST(HxSurfaceArea, OfALargeFieldDoesNotDependOnTheThreads)
{
    const unsigned long dims[3] = {128, 128, 70};
    HxUniformLabelField3 field(dims);
    unsigned char* labels = field.labelLattice()->getLabels();
    for (int k = 5; k < 65; k++)
        for (int j = 1; j < 101; j++) std::memset(labels + 128 * (j + 128 * k) + 3, 1, 80);
    for (const int threads : {1, 2, 3}) {
        setThreads(threads);
        EXPECT_EQ(field.getSurfaceArea(1), 2 * (80 * 100 + 80 * 60 + 100 * 60)) << "a box";
    }
}

TEST(HxMatDatabase, KnownNamesHaveTheirColourAndOthersOneOfTheirOwn)
{
    HxMatDatabase& database = *HxMatDatabase::getTheDatabase();
    for (const char* name : {"Exterior", "Inside", "Muscle", "Fat", "Bone", "Skin"}) {
        float rgb[3];
        ASSERT_NE(database.materials()->bundle(name, 0), nullptr) << name;
        ASSERT_TRUE(database.materials()->bundle(name, 0)->findColor(rgb));
        EXPECT_EQ(database.getColor(name), McColor(rgb[0], rgb[1], rgb[2]));
    }
    // The colours of the built-in names are those of the file that comes with the program, where more follow.
    McString error;
    McTmpDir tmp("materials", 0, 0);
    ASSERT_TRUE(tmp.create(0700));
    const std::string file = HxPackage::resourceFolders().front() + "/materials.txt";
    const HxParamBundle builtIn(*database.materials());
    ASSERT_TRUE(database.load(file.c_str(), error)) << error.c_str();
    EXPECT_GT(database.materials()->nBundles(), 20);
    for (int i = 0; i < builtIn.nBundles(); i++) {
        float rgb[3];
        ASSERT_TRUE(builtIn.bundle(i)->findColor(rgb));
        EXPECT_EQ(database.getColor(builtIn.bundle(i)->getName()), McColor(rgb[0], rgb[1], rgb[2]));
    }
    const HxParamBundle loaded(*database.materials());
    EXPECT_FALSE(database.load("/nowhere/materials.txt", error));
    EXPECT_FALSE(database.load(tmp.path().c_str(), error));
    const std::string own = tmp.path().str() + "/own.txt";
    const auto loadText = [&](const char* text) {
        std::ofstream(own) << text;
        return database.load(own.c_str(), error);
    };
    const struct
    {
        const char *text, *reason; // none for a good one
    } files[] = {{"", nullptr},
                 {"# mine\r\n\r\n\tAxon 0 0.5 1\r\nFat 1 1 0", nullptr},
                 {"Axon 0 0.5", "line 1"},
                 {"Axon 0 0.5 1 1", "line 1"},
                 {"Fat 0 0 0\n\nFat 0 0 256", "line 3"},
                 {"Fat 0 0 0\nFat red 0 1", "line 2"},
                 {"Fat 0 0 0\n%$! 0 0 1", "line 2"},
                 {"Fat 0 0 nan", "line 1"}};
    for (const auto& row : files) {
        EXPECT_EQ(loadText(row.text), !row.reason) << row.text;
        if (!row.reason) continue;
        EXPECT_THAT(error.str(), testing::HasSubstr(own + ": " + row.reason));
        EXPECT_EQ(database.getColor("Fat"), McColor(1, 1, 0)) << "a broken file changes nothing";
    }
    EXPECT_EQ(database.getColor("Axon"), McColor(0, 0.5f, 1));
    EXPECT_EQ(database.materials()->nBundles(), loaded.nBundles() + 1);
    tmp.remove();
    database.materials()->copy(builtIn);

    EXPECT_EQ(database.getColor("Material7"), database.getColor("Material7"));
    EXPECT_FALSE(database.getColor("Material7") == database.getColor("Material8"));
    // FNV-1a of the empty text is 2166136261, and that modulo 360 is 61: just past yellow.
    const McColor empty = database.getColor("");
    EXPECT_NEAR(empty.g, 0.9, 1e-3);
    EXPECT_NEAR(empty.b, 0.18, 1e-3);
    EXPECT_NEAR(empty.r, 0.9 - 0.72 / 60, 1e-3);
    EXPECT_EQ(database.materials()->bundle("Material7", 0), nullptr) << "asking adds nothing";
}
