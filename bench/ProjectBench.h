#pragma once
// What the benches of whole projects share: the clock, the rivals' commands, a folder that goes
// with the bench, and rows of the table.
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <string>
#include <vector>

#include "project/omProj/Project.h"

namespace pw::bench {

namespace fs = std::filesystem;

/** How long the work takes, with the disk quiet before it. */
inline double Seconds(const std::function<void()>& work) {
    sync();
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

inline double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

inline void Require(bool worked, const std::string& what) {
    if (worked) return;
    std::cerr << what << "\n";
    std::exit(1);
}

inline void Shell(const std::string& command) {
    Require(std::system(command.c_str()) == 0, "This failed: " + command);
}

/** A folder of its own, removed at the end. */
class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string name = (fs::temp_directory_path() / "pw-bench-XXXXXX").string();
        Require(mkdtemp(name.data()) != nullptr, "No temporary folder can be made.");
        path_ = name;
    }
    ~TemporaryFolder() { fs::remove_all(path_); }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    fs::path operator/(const std::string& name) const { return path_ / name; }

  private:
    fs::path path_;
};

inline void Save(Project& project, const fs::path& file) {
    Require(project.Save(FromNativePath(file.string())) == ProjectResult::Success,
            project.LastMessage());
}

/** A project of `count` pages in a site and `folders` - 1 folders of it, with its files below
 *  `work`. `html` gives the text of the page of that number, from 0. */
inline void MakeProject(Project& project, const fs::path& work, int count, int folders,
                        const std::function<std::string(int)>& html) {
    project.Clear();
    project.WorkingFolder = FromNativePath(work.string());
    project.ProjectId = "{bench}";
    project.Name = "Bench";
    WebSite* site = project.WebSites().Add();
    site->Name = "Web Site";
    int made = 0;
    for (int index = 0; index < folders; ++index) {
        Pages* pages = &site->Pages();
        fs::path place = work;
        if (index > 0) {
            Folder* folder = site->Sections().Add();
            folder->Name = folder->FolderName = folder->WorkingFolder =
                "section" + std::to_string(index);
            pages = &folder->Pages();
            place /= folder->Name;
        }
        fs::create_directories(place);
        for (int number = 1; number <= count / folders; ++number) {
            const fs::path file = place / ("page_" + std::to_string(number) + ".htm");
            std::ofstream(file, std::ios::binary) << html(made++);
            Page* page = pages->Add();
            page->Filename = FromNativePath(file.string());
            page->Name = page->Title = "Page " + std::to_string(number);
        }
    }
}

inline void Row(const char* what, double ours, double rival, const char* unit, double bar) {
    std::printf("%s\t%.1f %s\t%.1f %s\t%.2f\t%.1f\n", what, ours, unit, rival, unit, ours / rival,
                bar);
    std::fflush(stdout);
}

}  // namespace pw::bench
