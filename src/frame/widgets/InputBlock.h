#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>
#include <functional>

namespace yunqi {

// While a run or an export holds the window's thread, the operator's clicks
// and keys wait in the queue, and would act once it is over: on a grid that
// has changed under them. For its life an InputBlock swallows the input to
// one top-level window (message boxes and dialogs are windows of their own
// and keep theirs), and when it ends it lets what waited arrive and
// swallows that too (Drain). Painting, timers and the window manager's
// moves go on.
class InputBlock : public QObject {
  public:
    // window: any widget of the top-level window to block.
    explicit InputBlock(QWidget* window);
    ~InputBlock() override;
    InputBlock(const InputBlock&) = delete;
    InputBlock& operator=(const InputBlock&) = delete;

    // Reads what the operator did meanwhile from the window system and lets
    // it arrive, to be swallowed: called at the end of the busy time.
    void Drain();

    // While work can be stopped: Esc and a close call stop, and button (the
    // busy panel's stop button) takes its clicks. Without stop, both are
    // swallowed again.
    void AllowStop(std::function<void()> stop, QWidget* button);
    // The window or sub-window that was to close while the work ran: closed
    // again once the work is over.
    QWidget* CloseWanted() const { return closeWanted_; }

    // Whether the event is input (or a close) that the block swallows.
    static bool IsInput(const QEvent* event);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QPointer<QWidget> window_;
    std::function<void()> stop_;
    QPointer<QWidget> stopButton_;
    QPointer<QWidget> closeWanted_;
};

}  // namespace yunqi
