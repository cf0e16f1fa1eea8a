#pragma once

#include <QStringList>
#include <QtGlobal>

// Collects the warnings written to the debug output while it lives.
class MessageCapture
{
public:
    MessageCapture() { mPrevious = qInstallMessageHandler(&MessageCapture::Handle); Current() = this; }
    ~MessageCapture()
    {
        qInstallMessageHandler(mPrevious);
        Current() = nullptr;
    }
    MessageCapture(const MessageCapture&) = delete;
    MessageCapture& operator=(const MessageCapture&) = delete;

    const QStringList& Warnings() const { return mWarnings; }

private:
    static MessageCapture*& Current()
    {
        static MessageCapture* current = nullptr;
        return current;
    }

    static void Handle(QtMsgType type, const QMessageLogContext&, const QString& message)
    {
        if (Current() && type == QtWarningMsg)
            Current()->mWarnings.append(message);
    }

    QtMessageHandler mPrevious = nullptr;
    QStringList mWarnings;
};
