#pragma once
// What is to become of the projects that a crash has left: asked at the start.
#include <memory>
#include <vector>

#include "platform/controls/Dialog.h"
#include "project/Recovery.h"

namespace pw {

class frmRecover : public Dialog {
  public:
    frmRecover(ProjectContext& context, std::unique_ptr<RunFolder>& run);

    /** A project was recovered and is open. */
    bool Recovered() const { return recovered_; }

    Label lblText{this, "lblText"};
    ListView lvwRecover{this, "lvwRecover"};
    Button cmdRecover{this, "cmdRecover"};
    Button cmdLater{this, "cmdLater"};
    Button cmdDiscard{this, "cmdDiscard"};

    void Form_Load() override;

  private:
    void Fill();
    const RecoverableProject* Chosen() const;
    void cmdRecover_Click();
    void cmdDiscard_Click();

    ProjectContext& context_;
    std::unique_ptr<RunFolder>& run_;
    std::vector<RecoverableProject> projects_;
    bool recovered_ = false;
};

}  // namespace pw
