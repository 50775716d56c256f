// Loading and saving a project of 10,000 pages, beside the archiver that handles the same files.
// Each round runs ours and the rival in turn, with the disk quiet before each; the medians count.
#include <random>

#include "ProjectBench.h"
#include "cli/Session.h"
#include "project/PublishHTML.h"

namespace {

using namespace pw::bench;

constexpr int kPages = 10'000;
constexpr int kFolders = 8;
constexpr std::size_t kPageSize = 12 * 1024;  // bytes
constexpr int kRounds = 5;

std::string Html(std::mt19937& random) {
    std::string html = "<html><head><title>Page</title></head><body>\n";
    while (html.size() < kPageSize - 20) {
        html += "<p>";
        for (int word = 0; word < 12; ++word)
            html += std::to_string(random()) + " ";
        html += "</p>\n";
    }
    html.resize(kPageSize - 16, ' ');
    return html + "</body></html>\n";
}

/** Most memory, in kilobytes, that a program took, told by a small process that started it. */
double MemoryOf(const std::string& command) {
    FILE* pipe = popen(("/usr/bin/time -f %M " + command + " 2>&1 >/dev/null").c_str(), "r");
    Require(pipe, "The command time can not be started.");
    char line[200] = {};
    double kilobytes = 0;
    while (std::fgets(line, sizeof line, pipe))
        kilobytes = std::atof(line);
    Require(pclose(pipe) == 0 && kilobytes > 0, "This failed: " + command);
    return kilobytes;
}

}  // namespace

int main(int, char** arguments) {
    const TemporaryFolder base;
    const fs::path work = base / "work";
    const fs::path out = base / "out";
    const fs::path small = base / "small.pwp";
    const fs::path file = base / "large.pwp";
    const std::string tar = (base / "rival.tar").string();
    const auto files = pw::MakePosixFileSystem();
    pw::Project project(*files);
    std::mt19937 random(1);
    const auto html = [&](int) { return Html(random); };
    MakeProject(project, base / "small", kFolders + 2, kFolders, html);
    Save(project, small);
    MakeProject(project, work, kPages, kFolders, html);

    std::vector<double> fullSave, archive, load, extract, oneChanged;
    const auto emptyOut = [&] {
        fs::remove_all(out);
        fs::create_directory(out);
    };
    for (int round = 0; round < kRounds; ++round) {
        fs::remove(file);
        fullSave.push_back(Seconds([&] { Save(project, file); }));
        fs::remove(tar);
        archive.push_back(Seconds(
            [&] { Shell("tar cf " + tar + " -C " + work.string() + " . && sync " + tar); }));

        const fs::path page = work / "section3" / "page_77.htm";
        std::ofstream(page, std::ios::app) << "<!-- changed -->\n";
        oneChanged.push_back(Seconds([&] { Save(project, file); }));

        emptyOut();
        pw::Project loaded(*files);
        loaded.WorkingFolder = pw::FromNativePath(out.string());
        load.push_back(Seconds([&] {
            Require(loaded.Load(pw::FromNativePath(file.string())) == pw::ProjectResult::Success,
                    loaded.LastMessage());
        }));
        emptyOut();
        extract.push_back(Seconds([&] { Shell("tar xf " + tar + " -C " + out.string()); }));
    }
    Row("load 10,000 pages : tar x", Median(load) * 1000, Median(extract) * 1000, "ms", 1.5);
    Row("full save : tar c and sync", Median(fullSave) * 1000, Median(archive) * 1000, "ms", 1.5);
    Row("save after one page : full save", Median(oneChanged) * 1000, Median(fullSave) * 1000, "ms",
        0.3);

    {
        pw::cli::Session session((base / "profile").string());
        session.Open(pw::FromNativePath(file.string()));
        const std::string scratch = pw::ToNativePath(session.Project().WorkingFolder);
        std::vector<double> publish, copy;
        for (int round = 0; round < kRounds; ++round) {
            emptyOut();
            publish.push_back(Seconds([&] {
                const auto result =
                    pw::PublishAsHTML(session.Context(), pw::FromNativePath(out.string()));
                Require(result.published, result.reason);
            }));
            emptyOut();
            copy.push_back(Seconds([&] { Shell("cp -r " + scratch + " " + out.string()); }));
        }
        Row("publish as HTML : cp -r", Median(publish) * 1000, Median(copy) * 1000, "ms", 1.5);
    }

    const std::string cli =
        (fs::canonical(arguments[0]).parent_path().parent_path() / "pagewick-cli").string();
    Row("memory of info : of 10 pages", MemoryOf(cli + " info " + file.string()),
        MemoryOf(cli + " info " + small.string()), "kB", 1.5);
}
