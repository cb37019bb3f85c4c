// What a session of the whole program takes: a 16-bit image of 1024 x 1024 x 512 with labels, a
// selection by label, an add in 3D and its undo. Memory counts here, as the kernel books it.

#include "BenchProgram.h"
#include "BenchRace.h"
#include "BenchVolume.h"
#include "hx/HxSettingsMgr.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>

namespace {

/// Writes a volume of 2 * side x 2 * side x side voxels, made of four cubes side by side, slice by
/// slice: no more memory than a cube.
template <class Element>
void writeNrrd(const std::string& path, const char* type, const std::vector<Element>& cube,
               unsigned long side)
{
    std::ofstream file(path, std::ios::binary);
    file << "NRRD0004\ntype: " << type << "\ndimension: 3\nsizes: " << 2 * side << " " << 2 * side << " "
         << side << "\nspacings: 1 1 1\nencoding: raw\nendian: little\n\n";
    for (unsigned long z = 0; z < side; ++z)
        for (unsigned long y = 0; y < 2 * side; ++y)
            for (int part = 0; part < 2; ++part)
                file.write(reinterpret_cast<const char*>(&cube[(z * side + y % side) * side]),
                           static_cast<std::streamsize>(side * sizeof(Element)));
    benchRequire(file.flush().good(), path + ": cannot be written.");
}

void writeScript(const std::string& path, const std::string& image, const std::string& labels)
{
    std::ofstream file(path);
    file << "set image [load {" << image << "}]\n"
         << "set labels [load -labels {" << labels << "}]\n"
         << "segment $labels $image\n"
         << "set before [$labels count 3]\n"
         << "set moved [$labels count 2]\n"
         << "gi selectMaterial2 2\n"
         << "gi selectMaterial 3\n"
         << "gi add 3d\n"
         << "if {[$labels count 3] != $before + $moved || $moved == 0} { error \"add has failed\" }\n"
         << "gi undo\n"
         << "if {[$labels count 3] != $before} { error \"undo has failed\" }\n";
    benchRequire(file.flush().good(), path + ": cannot be written.");
}

/// Runs the script and returns the most memory that the process held, in GiB.
double peakGiBOf(const std::string& script)
{
    const pid_t process = fork();
    benchRequire(process >= 0, "vorel could not be started.");
    if (process == 0) {
        dup2(STDERR_FILENO, STDOUT_FILENO); // our own output is the table
        execl(BENCH_VOREL, BENCH_VOREL, "--headless", script.c_str(), static_cast<char*>(nullptr));
        _exit(127);
    }
    int status = 0;
    rusage usage{};
    wait4(process, &status, 0, &usage);
    benchRequire(WIFEXITED(status) && WEXITSTATUS(status) == 0, "vorel has failed.");
    return static_cast<double>(usage.ru_maxrss) / 1024 / 1024;
}

void benchSession(const BenchOptions& options)
{
    const std::string image = options.work + "/image.nrrd", labels = options.work + "/labels.nrrd",
                      script = options.work + "/session.tcl";
    {
        const BenchImage blobs = benchBlobs(options.size);
        writeNrrd(image, "uint16", blobs, options.size);
        writeNrrd(labels, "uint8", benchLabels(blobs), options.size);
    }
    writeScript(script, image, labels);
    double peakGiB = 0;
    const double ms = benchClockMs([&] { peakGiB = peakGiBOf(script); });
    const double voxels = 4 * static_cast<double>(options.voxels());
    char note[120];
    std::snprintf(note, sizeof note, "peak memory %.2f GiB; image, labels and selection alone are %.2f GiB",
                  peakGiB, voxels * (2 + 1 + 0.125) / (1 << 30));
    char name[80];
    std::snprintf(name, sizeof name, "session on %lu x %lu x %lu", 2 * options.size, 2 * options.size,
                  options.size);
    benchPrint({name, HxSettingsMgr::getInstance()->numThreads(), ms, "", 0, 0, note});
}

} // namespace

int main(int argc, char** argv)
{
    return benchMain(argc, argv, benchSession);
}
