#pragma once

#include <functional>
#include <utility>
#include <vector>

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QMessageBox>
#include <QPointer>
#include <QStringList>
#include <QTimer>

// Plays the user for every modal window that opens while it lives: each new one gets the next step, in order.
// Message boxes are recorded (title and text). A window for which no step is left is rejected and counted, so a test
// never hangs on a window it did not expect. Only the newest script alive plays. Answers are queued, so a window
// that opens another one from its answer (a dialog refusing OK with a message box) gets played too.
class ModalScript
{
public:
    using Step = std::function<void(QWidget*)>;

    explicit ModalScript(std::vector<Step> steps = {})
        : mSteps(std::move(steps))
        , mPrevious(Active())
    {
        Active() = this;
        QObject::connect(&mTimer, &QTimer::timeout, [this] { Play(); });
        mTimer.start(5);
    }

    ~ModalScript() { Active() = mPrevious; }
    ModalScript(const ModalScript&) = delete;
    ModalScript& operator=(const ModalScript&) = delete;

    // Answers a message box with this button.
    static Step Answer(QMessageBox::StandardButton button)
    {
        return [button](QWidget* window) {
            auto* box = qobject_cast<QMessageBox*>(window);
            if (box != nullptr && box->button(button) != nullptr)
                QMetaObject::invokeMethod(box->button(button), "click", Qt::QueuedConnection);
            else
                Close(window, "reject");
        };
    }

    // Runs `fill` on a dialog of that type and then accepts it; any other window is rejected.
    template <typename Dialog>
    static Step Accept(std::function<void(Dialog*)> fill = {})
    {
        return [fill](QWidget* window) {
            auto* dialog = qobject_cast<Dialog*>(window);
            if (dialog == nullptr)
            {
                Close(window, "reject");
                return;
            }
            if (fill)
                fill(dialog);
            Close(window, "accept");
        };
    }

    static Step Reject()
    {
        return [](QWidget* window) { Close(window, "reject"); };
    }

    int Played() const { return mPlayed; }
    int Unexpected() const { return mUnexpected; }
    bool Done() const { return mPlayed == static_cast<int>(mSteps.size()); }
    QStringList windowTitles; // every window, in order
    QStringList boxTitles;    // message boxes only
    QStringList boxTexts;

private:
    static ModalScript*& Active()
    {
        static ModalScript* active = nullptr;
        return active;
    }

    void Play()
    {
        if (Active() != this)
            return;
        QWidget* window = QApplication::activeModalWidget();
        if (window == nullptr || window == mLast)
            return;
        mLast = window;
        windowTitles.append(window->windowTitle());
        if (auto* box = qobject_cast<QMessageBox*>(window))
        {
            boxTitles.append(box->windowTitle());
            boxTexts.append(box->text());
        }
        if (mPlayed < static_cast<int>(mSteps.size()))
        {
            mSteps[mPlayed++](window);
            return;
        }
        ++mUnexpected;
        Close(window, "reject");
    }

    static void Close(QWidget* window, const char* slot)
    {
        if (qobject_cast<QDialog*>(window) != nullptr)
            QMetaObject::invokeMethod(window, slot, Qt::QueuedConnection);
    }

    std::vector<Step> mSteps;
    ModalScript* mPrevious;
    int mPlayed = 0;
    int mUnexpected = 0;
    QPointer<QWidget> mLast;
    QTimer mTimer;
};
