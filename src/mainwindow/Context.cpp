#include "mainwindow/Context.h"

#include <algorithm>

#include "mainwindow/Finding.h"
#include "mainwindow/frmDocument.h"
#include "project/ProjectContext.h"

namespace pw {

OpenDocumentList::OpenDocumentList() = default;
OpenDocumentList::~OpenDocumentList() = default;

frmDocument& OpenDocumentList::Add(std::unique_ptr<frmDocument> document) {
    return *documents_.emplace_back(std::move(document));
}

frmDocument* OpenDocumentList::Find(const std::string& key) const {
    const auto at = std::find_if(documents_.begin(), documents_.end(),
                                 [&key](const auto& open) { return open->PageKey() == key; });
    return at == documents_.end() ? nullptr : at->get();
}

std::unique_ptr<frmDocument> OpenDocumentList::Remove(const std::string& key) {
    const auto at = std::find_if(documents_.begin(), documents_.end(),
                                 [&key](const auto& open) { return open->PageKey() == key; });
    if (at == documents_.end()) return nullptr;
    std::unique_ptr<frmDocument> removed = std::move(*at);
    documents_.erase(at);
    return removed;
}

MainContext::MainContext(FrameContext& frameContext, ProjectContext& projectContext,
                         frmMDIMain& mainWindow, CommandBar& bar)
    : frame(frameContext),
      project(projectContext),
      model(projectContext.project),
      window(mainWindow),
      barMain(bar),
      Finder(std::make_unique<PageFinder>(*this)) {}

MainContext::~MainContext() = default;

}  // namespace pw
