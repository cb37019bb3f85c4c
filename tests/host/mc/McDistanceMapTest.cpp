#include "mc/McDistanceMap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace {

// The two sweeps voxel by voxel, each neighbour in turn.
void propagatePlainly(std::vector<float>& field, const int* d, const float* weights,
                      const unsigned char* mask)
{
    for (int sweep = 0; sweep < 2; sweep++) {
        const int count = d[0] * d[1] * d[2];
        for (int i = 0; i < count; i++) {
            const int at = sweep == 0 ? i : count - 1 - i;
            const int x = at % d[0], y = at / d[0] % d[1], z = at / d[0] / d[1];
            if (mask && !mask[at]) continue;
            for (int k = sweep == 0 ? 0 : 13; k <= (sweep == 0 ? 13 : 26); k++) {
                const int x2 = x + k % 3 - 1, y2 = y + k / 3 % 3 - 1, z2 = z + k / 9 - 1;
                if (weights[k] < 0 || x2 < 0 || x2 >= d[0] || y2 < 0 || y2 >= d[1] || z2 < 0 || z2 >= d[2])
                    continue;
                const int from = x2 + d[0] * (y2 + d[1] * z2);
                if (mask && !mask[from]) continue;
                const float v = weights[k] + field[from];
                if (v < field[at]) field[at] = v;
            }
        }
    }
}

class Recorder : public McProgressInterface
{
public:
    void begin(const char* text) override { texts += std::string(text) + "|"; }
    void setText(const char* text) override { texts += std::string(text) + "|"; }
    void setProgress(double f) override { fraction = f; }
    bool interrupted() override { return --patience < 0; }
    void end() override { texts += "end"; }

    std::string texts;
    double fraction = 0;
    int patience = 1000;
};

constexpr float kPlane[9] = {1.41f, 1, 1.41f, 1, 0, 1, 1.41f, 1, 1.41f};

} // namespace

TEST(McDistanceMap, PropagatesLikeAPlainLoop)
{
    std::mt19937 random(47);
    const int sizes[][3] = {{1, 1, 1}, {1, 9, 4}, {9, 1, 1}, {33, 21, 1}, {17, 12, 9}, {2, 2, 2}};
    for (const int* d : sizes) {
        for (bool isMasked : {false, true}) {
            float weights[27];
            for (float& w : weights) w = random() % 5 == 0 ? -1.0f : float(random() % 100) / 25;
            if (d[2] == 1) McDistanceMap::chamferMaskOfPlane(kPlane, weights);
            std::vector<float> field(d[0] * d[1] * d[2]);
            std::vector<unsigned char> mask(field.size());
            for (float& v : field) v = random() % 20 == 0 ? 0.5f : 1e6f;
            for (unsigned char& m : mask) m = random() % 4 != 0;
            std::vector<float> expected = field;
            const unsigned char* within = isMasked ? mask.data() : nullptr;
            propagatePlainly(expected, d, weights, within);
            EXPECT_TRUE(
                McDistanceMap::propagateBSFieldChamferFast(field.data(), d, weights, within, nullptr));
            EXPECT_EQ(field, expected) << d[0] << " " << d[1] << " " << d[2] << " masked " << isMasked;
        }
    }
}

TEST(McDistanceMap, TellsItsProgressAndStops)
{
    float weights[27];
    std::fill_n(weights, 27, 1.0f);
    const int d[3] = {4, 4, 5};
    std::vector<float> field(80, 100.0f);
    Recorder patient;
    EXPECT_TRUE(McDistanceMap::propagateBSFieldChamferFast(field.data(), d, weights, nullptr, &patient));
    EXPECT_EQ(patient.texts, "Propagating pass 1/2 ...|Propagating pass 2/2 ...|end");
    EXPECT_EQ(patient.fraction, 1);
    Recorder impatient;
    impatient.patience = 2;
    EXPECT_FALSE(McDistanceMap::propagateBSFieldChamferFast(field.data(), d, weights, nullptr, &impatient));
    EXPECT_EQ(impatient.texts, "Propagating pass 1/2 ...|end");
}
