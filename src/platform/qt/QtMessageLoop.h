#pragma once
#include <QObject>

#include "platform/MessageLoop.h"

namespace pw {

class QtMessageLoop : public MessageLoop {
  public:
    void WaitUntil(const std::function<bool()>& condition) override;
    void ProcessEvents() override;
    void Post(std::function<void()> task) override;

  private:
    QObject receiver_;  ///< posted tasks die with the loop
};

}  // namespace pw
