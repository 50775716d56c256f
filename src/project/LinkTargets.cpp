#include "project/LinkTargets.h"

#include "frame/Context.h"
#include "platform/Text.h"
#include "platform/dom/TagScan.h"
#include "project/FramesetMask.h"
#include "project/Links.h"

namespace pw {

namespace {

constexpr std::string_view kModule = "ProjectFunctions.";
constexpr const char* kNoFrame = "0";
constexpr const char* kFrame = "1";

// Pictures in the main image list.
constexpr int kPageImage = 5;
constexpr int kClosedFolderImage = 7;
constexpr int kOpenFolderImage = 8;
constexpr int kFrameImage = 45;

TreeNode MakeNode(std::string key, std::string text, int image, int expandedImage = 0) {
    TreeNode node;
    node.key = std::move(key);
    node.text = std::move(text);
    node.tag = kNoFrame;
    node.image = image;
    node.expandedImage = expandedImage;
    return node;
}

void BuildTargetsFromPage(TreeView& tree, ProjectContext& context, const Page& page) {
    for (const std::string& name : FrameNames(GetPageHTML(context, page))) {
        TreeNode node = MakeNode(page.Key() + name, name, kFrameImage);
        node.tag = kFrame;
        tree.Add(page.Key(), std::move(node));
    }
}

void RemoveIfChildless(TreeView& tree, const std::string& key) {
    const TreeNode* node = tree.Find(key);
    if (node && node->children.empty()) tree.Remove(key);
}

void BuildTargetsTraverse(TreeView& tree, ProjectContext& context, const Pages& pages,
                          const Sections& sections, const std::string& parentKey) {
    for (const auto& page : pages) {
        if (page.PageType != PageType::Frames) continue;
        tree.Add(parentKey, MakeNode(page.Key(), page.Name, kPageImage));
        BuildTargetsFromPage(tree, context, page);
        RemoveIfChildless(tree, page.Key());
    }
    for (const auto& folder : sections) {
        tree.Add(parentKey,
                 MakeNode(folder.Key(), folder.Name, kClosedFolderImage, kOpenFolderImage));
        BuildTargetsTraverse(tree, context, folder.Pages(), folder.Sections(), folder.Key());
        RemoveIfChildless(tree, folder.Key());
    }
}

}  // namespace

void BuildTargetsList(TreeView& tree, ProjectContext& context) {
    Trap(context.frame.errorLog, kModule, "BuildTargetsList", [&] {
        tree.Clear();
        const TreeUpdate update(tree);
        for (const auto& site : context.project.WebSites()) {
            TreeNode node = MakeNode(site.Key(), site.Name, 0);
            node.expanded = true;
            tree.Add("", std::move(node));
            BuildTargetsTraverse(tree, context, site.Pages(), site.Sections(), site.Key());
        }
    });
}

std::vector<std::string> FrameNames(std::string_view html) {
    const std::string page = UncommentFrameset(html);
    // Behind it stands the page for visitors without frames.
    const std::string_view frames =
        std::string_view(page).substr(0, FindNoCase(page, "<!-- End Of Frame block -->"));
    std::vector<std::string> names;
    dom::TagScan scan(frames, dom::TagsFrom::Markup);
    while (const auto tag = scan.next()) {
        if (!tag->is("frame") && !tag->is("iframe")) continue;
        std::string name = ReplaceAll(tag->attribute("name").value_or(""), "\"", "");
        if (!name.empty()) names.push_back(std::move(name));
    }
    return names;
}

}  // namespace pw
