// Work that goes through all 10,000 pages of a project, beside the tools of the shell that do the
// same to a copy of the files. Each round runs ours and the rival in turn; the medians count.
#include <random>

#include "ProjectBench.h"
#include "cli/Session.h"
#include "project/Folders.h"
#include "project/LinkList.h"
#include "project/Links.h"
#include "project/MergeVariables.h"

namespace {

using namespace pw::bench;

constexpr int kPages = 10'000;
constexpr int kFolders = 8;
constexpr std::size_t kPageSize = 12 * 1024;  // bytes
constexpr int kRounds = 3;
constexpr int kPagesWithReference = 100;

/** A page as sites have them: a bar of links, paragraphs with a link here and there, pictures. Of
 *  every hundred pages one links to the page that is to be renamed and shows the variable. */
std::string Html(int page, std::mt19937& random) {
    const int inFolder = page % (kPages / kFolders);
    const bool isSpecial = page % (kPages / kPagesWithReference) == 50;
    std::string html =
        "<html>\n<head><title>Page " + std::to_string(page) + "</title></head>\n<body>\n";
    for (int link = 1; link <= 8; ++link)
        html += "<a href=\"page_" + std::to_string(link * 10) + ".htm\">Chapter&nbsp;" +
                std::to_string(link) + "</a> |\n";
    html += "<h1 align=\"center\">Page " + std::to_string(page) + "</h1>\n";
    html += "<a href=\"http://www.example.org/\">A site</a> <a href=\"page_" +
            std::to_string(inFolder) + ".htm#notes\">Back</a>\n";
    if (isSpecial) {
        html += std::string("<p><a href=\"") + (page < kPages / kFolders ? "" : "../") +
                "target.htm\">The target</a></p>\n";
        html += std::string("<p style=\"background: url(") +
                (page < kPages / kFolders ? "" : "../") + "section1/media/a.gif)\"></p>\n";
        html += "<p><A type=omMerge name=\"Slogan\">slogan 0</A></p>\n";
    }
    int paragraph = 0;
    while (html.size() < kPageSize - 200) {
        html += ++paragraph % 5 == 0 ? "<p><img src=\"media/a.gif\" width=\"90%\"><b>" : "<p>";
        for (int word = 0; word < 12; ++word)
            html += std::to_string(random()) + " ";
        html += paragraph % 5 == 0 ? "</b></p>\n" : "</p>\n";
    }
    return html + "<a name=\"notes\"></a></body>\n</html>\n";
}

std::string PerlOver(const fs::path& folder, const std::string& change) {
    return "find " + folder.string() + " -name '*.htm' -print0 | xargs -0 perl -pi -e '" + change +
           "'";
}

}  // namespace

int main() {
    const TemporaryFolder base;
    const fs::path file = base / "large.pwp";
    {
        const auto files = pw::MakePosixFileSystem();
        pw::Project project(*files);
        std::mt19937 random(1);
        MakeProject(project, base / "work", kPages, kFolders,
                    [&](int page) { return Html(page, random); });
        const fs::path target = base / "work" / "target.htm";
        fs::rename(base / "work" / "page_7.htm", target);
        project.WebSites().Item(1)->Pages().Item(7)->Filename = pw::FromNativePath(target.string());
        Save(project, file);
    }
    pw::cli::Session session((base / "profile").string());
    session.Open(pw::FromNativePath(file.string()));
    pw::ProjectContext& context = session.Context();
    pw::Page* page = context.project.WebSites().Item(1)->Pages().Item(7);
    const std::string scratch = pw::ToNativePath(session.Project().WorkingFolder);
    const fs::path copy = base / "copy";
    Shell("cp -r " + scratch + " " + copy.string());
    Require(pw::SetCustomVariable(context, "Slogan", "slogan 0").empty(), "No variable.");

    pw::Folder* folder = context.project.WebSites().Item(1)->Sections().Item(1);
    std::string folderName = folder->Name;
    std::vector<double> rename, renameRival, move, moveRival, variable, variableRival, list,
        listRival;
    std::string name = "target";
    for (int round = 1; round <= kRounds; ++round) {
        const std::string number = std::to_string(round);
        rename.push_back(Seconds([&] {
            std::string reason;
            Require(pw::RenamePage(context, *page, "other" + number + ".htm", &reason), reason);
            Require(reason.empty(), reason);
        }));
        renameRival.push_back(Seconds([&] {
            Shell("mv " + (copy / (name + ".htm")).string() + " " +
                  (copy / ("other" + number + ".htm")).string());
            Shell(PerlOver(copy, "s/\\b" + name + "\\.htm/other" + number + ".htm/gi"));
        }));
        name = "other" + number;

        move.push_back(Seconds([&] {
            std::string reason;
            Require(pw::RenameFolderOnDisk(context, *folder, "part" + number, &reason), reason);
            Require(reason.empty(), reason);
        }));
        moveRival.push_back(Seconds([&] {
            Shell("mv " + (copy / folderName).string() + " " + (copy / ("part" + number)).string());
            Shell(PerlOver(copy, "s#\\b" + folderName + "/#part" + number + "/#gi"));
        }));
        folderName = "part" + number;

        Require(pw::SetCustomVariable(context, "Slogan", "slogan " + number).empty(), "");
        variable.push_back(Seconds([&] {
            const auto update = pw::UpdateMergeVariablesInPages(context);
            Require(update.notUpdated.empty(), "The variable could not be written.");
        }));
        variableRival.push_back(Seconds([&] {
            Shell(PerlOver(copy, "s/(name=\"Slogan\">)[^<]*/$1slogan " + number + "/gi"));
        }));

        std::size_t found = 0;
        list.push_back(Seconds([&] { found = pw::ListLinks(context).size(); }));
        Require(found > kPages, "Links are missing.");
        // To the null device it would stop at the first one.
        listRival.push_back(Seconds([&] {
            Shell("grep -rho 'href=\"[^\"]*\"' " + copy.string() + " >" +
                  (base / "links.txt").string());
        }));
    }
    // Both have done the same work.
    Shell("diff -rq " + scratch + " " + copy.string() + " >&2");
    Row("rename a page, 100 of 10,000 link to it : perl -pi", Median(rename) * 1000,
        Median(renameRival) * 1000, "ms", 0.5);
    Row("rename a folder, 100 of 10,000 lead through it : perl -pi", Median(move) * 1000,
        Median(moveRival) * 1000, "ms", 0.5);
    Row("change a variable used in 100 of 10,000 pages : perl -pi", Median(variable) * 1000,
        Median(variableRival) * 1000, "ms", 0.5);
    Row("list all links of 10,000 pages : grep -o", Median(list) * 1000, Median(listRival) * 1000,
        "ms", 4.0);
}
