#pragma once
// A project in memory with its scratch area on a real disk, in one line: `TestProject test;`.
#include <chrono>
#include <filesystem>
#include <string>

#include "project/InsertPage.h"
#include "project/Lifecycle.h"
#include "project/Scratch.h"
#include "project/omProj/Project.h"
#include "support/TestContext.h"
#include "support/TestWorkspace.h"

namespace pw::test {

struct TestProject : TestContext {
    TestProject() {
        EXPECT_TRUE(CreateWorkingFolders(frame));
        InitNewProject(context);
        workspace.calls.clear();
    }

    /** A page with that body and title, taken in from a file of its own. */
    Page* Insert(const std::string& name, const std::string& body = "<p>text</p>",
                 Container where = {}, ShowInsertedPage show = ShowInsertedPage::No) {
        InsertPageRequest request;
        request.sourceFile = folder.Put(
            "source\\" + name + ".htm",
            "<html><head><title>" + name + "</title></head><body>" + body + "</body></html>");
        request.folder = where;
        request.show = show;
        std::string reason;
        Page* page = InsertPage(context, request, &reason);
        EXPECT_NE(page, nullptr) << name << ": " << reason;
        project.IsLoaded = true;
        project.IsDirty = true;
        return page;
    }
    /** Saves under that name in the test's folder; returns the path. */
    std::string SaveAs(const std::string& name) {
        frame.settings.ProjectFilename = folder.Path(name);
        EXPECT_TRUE(SaveProject(context, Proceed::Save, Silent::Yes)) << LastLogged();
        return frame.settings.ProjectFilename;
    }
    std::string Text(const std::string& path) { return ReadTextFile(*files, path); }
    /** Makes a file an hour old, so that whoever writes it leaves a trace; returns its time. */
    std::int64_t Age(const std::string& path) {
        const std::filesystem::path native = ToNativePath(path);
        std::filesystem::last_write_time(
            native, std::filesystem::last_write_time(native) - std::chrono::hours(1));
        return files->Stat(path).modified;
    }
    std::string LastLogged() {
        const std::string log =
            ReadTextFile(*files, BuildPath(frame.settings.ProjectsFolder, "error.log"));
        return log.substr(log.size() > 2000 ? log.size() - 2000 : 0);
    }

    Project project{*files};
    TestWorkspace workspace{*files};
    ProjectContext context{frame, project, workspace};
};

}  // namespace pw::test
