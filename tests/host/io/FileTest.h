#pragma once

#include "hx/HxFileAccess.h"
#include "hx/HxLabelField3.h"
#include "hx/HxMessage.h"
#include "hx/HxObjectPool.h"
#include "hx/HxRegScalarField3.h"
#include "mc/McHandle.h"

#include <QTemporaryDir>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <string>
#include <vector>

using Field = McHandle<HxRegScalarField3>;

/// A folder of its own for each test, the console as lines, and files as byte strings.
class FileTest : public testing::Test
{
protected:
    FileTest()
    {
        HxMessage::setSink([this](const char* line) { console.push_back(line); });
    }
    ~FileTest() override { HxMessage::setSink(nullptr); }

    std::string path(const std::string& name) const { return folder.path().toStdString() + "/" + name; }

    std::string store(const std::string& name, const std::string& bytes) const
    {
        std::filesystem::create_directories(std::filesystem::path(path(name)).parent_path());
        std::ofstream(path(name), std::ios::binary) << bytes;
        return path(name);
    }

    static std::string bytesOf(const std::string& file)
    {
        std::ifstream in(file, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }

    /// Null on failure, with the message in `error`.
    Field load(const std::vector<std::string>& files, bool asLabels = false)
    {
        McDArray<McString> paths;
        for (const std::string& file : files) paths.append(McString(file));
        McString text;
        HxData* data = HxFileAccess::load(paths, asLabels, text);
        error = text.str();
        EXPECT_EQ(data == nullptr, !error.empty()) << error;
        return Field(dynamic_cast<HxRegScalarField3*>(data));
    }
    Field load(const std::string& file, bool asLabels = false)
    {
        return load(std::vector<std::string>{file}, asLabels);
    }

    bool save(const Field& field, const std::string& file)
    {
        McString text;
        const bool done = field->save(file.c_str(), text);
        error = text.str();
        return done;
    }

    /// Random bytes as voxels. Floating-point fields get whole numbers, so that no NaN is among them.
    Field randomImage(const std::vector<unsigned long>& dims, int code, int coordKind = 1)
    {
        Field field(new HxRegScalarField3(dims.data(), code, coordKind, nullptr));
        auto* bytes = static_cast<unsigned char*>(field->lattice()->dataPtr());
        const unsigned long n = field->lattice()->numNodes();
        for (unsigned long i = 0; i < field->lattice()->numBytes(); ++i)
            bytes[i] = static_cast<unsigned char>(random());
        for (unsigned long i = 0; i < n && code == 3; ++i)
            reinterpret_cast<float*>(bytes)[i] = static_cast<float>(random());
        for (unsigned long i = 0; i < n && code == 4; ++i)
            reinterpret_cast<double*>(bytes)[i] = random() / 7.0;
        return field;
    }

    static void expectSameVoxels(const Field& a, const Field& b)
    {
        ASSERT_TRUE(a && b);
        const HxLattice3& p = *a->lattice();
        const HxLattice3& q = *b->lattice();
        ASSERT_TRUE(std::equal(p.dims(), p.dims() + 3, q.dims()));
        ASSERT_EQ(p.primType(), q.primType());
        EXPECT_EQ(0, std::memcmp(p.dataPtr(), q.dataPtr(), p.numBytes()));
    }

    static std::vector<float> boxOf(const Field& field)
    {
        return std::vector<float>(field->coords()->boundingBox(), field->coords()->boundingBox() + 6);
    }

    static std::vector<double> numbers(const Field& field, const char* name, int count)
    {
        std::vector<double> v(static_cast<std::size_t>(count));
        return field->parameters.findReal(name, count, v.data()) ? v : std::vector<double>();
    }

    template <class T>
    static std::string raw(const std::vector<T>& values)
    {
        return std::string(reinterpret_cast<const char*>(values.data()), values.size() * sizeof(T));
    }

    template <class T>
    static std::vector<T> voxels(const Field& field)
    {
        const T* data = static_cast<const T*>(field->lattice()->dataPtr());
        return std::vector<T>(data, data + field->lattice()->numNodes());
    }

    QTemporaryDir folder;
    std::string error;
    std::vector<std::string> console;
    std::mt19937 random{20240607};
};
