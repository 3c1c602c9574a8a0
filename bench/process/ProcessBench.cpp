// Times ktr-render as a whole process, exec to exit, one label per process as production runs it, beside the
// floors that no renderer can beat: a static program that only starts and exits, and one that zeroes a raster of
// KTD2 size and writes it to a file. Figures are the CPU time of each child (user + system, from wait4), since
// wall time on a shared machine says more about the neighbours. Cases take turns run by run, so that a drift of
// the machine's speed hits them all alike.
//
// ktr_process_bench [runs] [ktr-render] [other ktr-render]: the runs per case (default 200), the binary to time
// (default the one this build made), and one to hold it against run by run; the floors and labels are those of
// the build and the source tree.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace {

struct Case {
    std::string name;
    std::vector<std::string> argv;
    std::vector<double> cpuMs;
};

// Starts the command in `dir` with its output thrown away.
pid_t start(const std::vector<std::string>& argv, const std::string& dir)
{
    const pid_t pid = fork();
    if (pid != 0)
        return pid;
    std::vector<char*> args;
    for (const std::string& arg : argv)
        args.push_back(const_cast<char*>(arg.c_str()));
    args.push_back(nullptr);
    const int null = open("/dev/null", O_WRONLY);
    if (chdir(dir.c_str()) != 0 || null < 0)
        _exit(126);
    dup2(null, 1);
    dup2(null, 2);
    execv(args[0], args.data());
    _exit(127);
}

// CPU milliseconds of one run of the command; exits the benchmark if the command fails. Each run writes a new
// file, as a batch of labels does: the files of earlier runs are removed here, outside the measured child.
double runOnce(const std::vector<std::string>& argv, const std::string& dir)
{
    std::filesystem::remove(dir + "/out.bmp");
    std::filesystem::remove(dir + "/raster.bin");
    const pid_t pid = start(argv, dir);
    int status = 0;
    rusage usage{};
    wait4(pid, &status, 0, &usage);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        std::fprintf(stderr, "failed with status %d:", status);
        for (const std::string& arg : argv)
            std::fprintf(stderr, " %s", arg.c_str());
        std::fprintf(stderr, "\n");
        std::exit(1);
    }
    const auto ms = [](const timeval& t) { return t.tv_sec * 1e3 + t.tv_usec / 1e3; };
    return ms(usage.ru_utime) + ms(usage.ru_stime);
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    const size_t n = values.size();
    return n % 2 == 1 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
}

// Wall-clock labels per second of `count` demo renders, two at a time, as `xargs -P2` runs a batch.
double batchRate(const std::vector<std::string>& argv, const std::string& dir, int count)
{
    const auto begin = std::chrono::steady_clock::now();
    int started = 0, running = 0;
    while (started < count || running > 0) {
        if (running < 2 && started < count) {
            std::vector<std::string> numbered = argv;
            numbered.push_back("out=batch" + std::to_string(started) + ".bmp");
            start(numbered, dir);
            ++started;
            ++running;
            continue;
        }
        int status = 0;
        wait(&status);
        --running;
    }
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
    return count / seconds.count();
}

// The labels on both printers, trimmed and whole, rendered by `renderer`; `tag` marks the cases of a second one.
void addLabelCases(std::vector<Case>& cases, const std::string& renderer, const std::string& tag)
{
    // The demo is larger than KTA1's raster.
    for (const char* label : {"box", "text", "demo"})
        for (const char* printer : {"KTD2", "KTA1"})
            for (const char* trim : {"y", "n"})
                if (label != std::string("demo") || printer != std::string("KTA1"))
                    cases.push_back({std::string(label) + " " + printer + (trim[0] == 'y' ? " trimmed" : " whole") + tag,
                                     {renderer, std::string("in=") + label + ".esc",
                                      std::string("printer=") + printer, std::string("trim=") + trim, "out=out.bmp"},
                                     {}});
}

}  // namespace

int main(int argc, char** argv)
{
    const int runs = argc > 1 ? std::atoi(argv[1]) : 200;
    const std::string renderer = argc > 2 ? argv[2] : KTR_RENDER_BINARY;
    const std::string other = argc > 3 ? argv[3] : "";
    const std::filesystem::path labels = KTR_BENCH_LABELS;
    const std::string dir = std::filesystem::temp_directory_path() / ("ktr_process_bench_" + std::to_string(getpid()));
    std::filesystem::create_directories(dir);
    std::filesystem::copy_file(labels / "box.esc", dir + "/box.esc");
    std::filesystem::copy_file(labels / "text.esc", dir + "/text.esc");
    std::filesystem::copy_file(KTR_DEMO_LABEL, dir + "/demo.esc");

    std::vector<Case> cases = {
        {"exit floor (static, starts and exits)", {KTR_EXIT_FLOOR}, {}},
        {"raster floor (zeroes 2 MB, writes it)", {KTR_RASTER_FLOOR, "raster.bin"}, {}},
    };
    addLabelCases(cases, renderer, "");
    const size_t firstOther = cases.size();
    if (!other.empty())
        addLabelCases(cases, other, " (2)");
    for (Case& c : cases)
        for (int i = 0; i < 3; ++i)
            runOnce(c.argv, dir);
    for (int i = 0; i < runs; ++i)
        for (Case& c : cases)
            c.cpuMs.push_back(runOnce(c.argv, dir));

    const double floor = median(cases[0].cpuMs);
    std::printf("CPU per process in ms over %d runs each (user + system of the child)\n", runs);
    std::printf("%-44s %8s %8s %8s %12s\n", "case", "median", "min", "max", "x exit floor");
    for (const Case& c : cases) {
        const auto [low, high] = std::minmax_element(c.cpuMs.begin(), c.cpuMs.end());
        std::printf("%-44s %8.3f %8.3f %8.3f %12.2f\n", c.name.c_str(), median(c.cpuMs), *low, *high,
                    median(c.cpuMs) / floor);
    }
    if (!other.empty()) {
        std::printf("\n%s against %s: median of the run-by-run CPU ratios\n", renderer.c_str(), other.c_str());
        for (size_t i = 2; i < firstOther; ++i) {
            std::vector<double> ratios;
            for (int r = 0; r < runs; ++r)
                ratios.push_back(cases[i].cpuMs[r] / cases[i + firstOther - 2].cpuMs[r]);
            std::printf("%-44s %8.3f\n", cases[i].name.c_str(), median(ratios));
        }
    }
    for (const std::string& binary : {renderer, other})
        if (!binary.empty())
            std::printf("batch of %s: 200 demo renders, two at a time: %.0f labels per second\n", binary.c_str(),
                        batchRate({binary, "in=demo.esc"}, dir, 200));
    std::filesystem::remove_all(dir);
    return 0;
}
