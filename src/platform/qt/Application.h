#pragma once
#include <QApplication>
#include <QElapsedTimer>

#include <functional>

namespace pw {

/** The last net: what no handler has caught does not end the program. An event that fails is over.
 */
class Application : public QApplication {
  public:
    using QApplication::QApplication;

    enum class Fault { Told, Again };
    /** Called while the exception is being handled; throws nothing. `Again` for what follows within
     *  seconds: a window that can't be drawn fails with every event, and telling that would never
     *  end. None writes a line on the error output. */
    std::function<void(Fault)> onFault;

    bool notify(QObject* receiver, QEvent* event) override;

  private:
    void report();

    QElapsedTimer sinceTold_;
};

}  // namespace pw
