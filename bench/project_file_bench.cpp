// Loading and saving a project of 10,000 pages, beside the archiver that handles the same files.
// Each round runs ours and the rival in turn, with the disk quiet before each; the medians count.
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <random>
#include <string>
#include <vector>

#include "cli/Session.h"
#include "project/PublishHTML.h"
#include "project/omProj/Project.h"

namespace {

namespace fs = std::filesystem;

constexpr int kPages = 10'000;
constexpr int kFolders = 8;
constexpr std::size_t kPageSize = 12 * 1024;  // bytes
constexpr int kRounds = 5;

double Seconds(const std::function<void()>& work) {
    sync();
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void Require(bool worked, const std::string& what) {
    if (worked) return;
    std::cerr << what << "\n";
    std::exit(1);
}

void Shell(const std::string& command) {
    Require(std::system(command.c_str()) == 0, "This failed: " + command);
}

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

void MakePages(pw::Pages& pages, int count, const fs::path& folder, std::mt19937& random) {
    fs::create_directories(folder);
    for (int number = 1; number <= count; ++number) {
        const fs::path file = folder / ("page_" + std::to_string(number) + ".htm");
        std::ofstream(file, std::ios::binary) << Html(random);
        pw::Page* page = pages.Add();
        page->Filename = pw::FromNativePath(file.string());
        page->Name = page->Title = "Page " + std::to_string(number);
    }
}

void MakeProject(pw::Project& project, const fs::path& work, int count) {
    std::mt19937 random(1);
    project.Clear();
    project.WorkingFolder = pw::FromNativePath(work.string());
    project.ProjectId = "{bench}";
    project.Name = "Bench";
    pw::WebSite* site = project.WebSites().Add();
    site->Name = "Web Site";
    MakePages(site->Pages(), count / kFolders, work, random);
    for (int index = 1; index < kFolders; ++index) {
        pw::Folder* folder = site->Sections().Add();
        folder->Name = folder->FolderName = folder->WorkingFolder =
            "section" + std::to_string(index);
        MakePages(folder->Pages(), count / kFolders, work / folder->Name, random);
    }
}

void Save(pw::Project& project, const fs::path& file) {
    Require(project.Save(pw::FromNativePath(file.string())) == pw::ProjectResult::Success,
            project.LastMessage());
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

void Row(const char* what, double ours, double rival, const char* unit, double bar) {
    std::printf("%s\t%.1f %s\t%.1f %s\t%.2f\t%.1f\n", what, ours, unit, rival, unit, ours / rival,
                bar);
    std::fflush(stdout);
}

}  // namespace

int main(int, char** arguments) {
    std::string name = (fs::temp_directory_path() / "pw-bench-XXXXXX").string();
    Require(mkdtemp(name.data()) != nullptr, "No temporary folder can be made.");
    const fs::path base = name;
    const fs::path work = base / "work";
    const fs::path out = base / "out";
    const fs::path small = base / "small.pwp";
    const fs::path file = base / "large.pwp";
    const std::string tar = (base / "rival.tar").string();
    const auto files = pw::MakePosixFileSystem();
    pw::Project project(*files);
    MakeProject(project, base / "small", kFolders + 2);
    Save(project, small);
    MakeProject(project, work, kPages);

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
    fs::remove_all(base);
}
