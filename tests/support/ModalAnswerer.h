#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QStringList>
#include <QTimer>

// Answers every modal message box that opens while it lives, and remembers what each one said.
class ModalAnswerer
{
public:
    explicit ModalAnswerer(QMessageBox::StandardButton answer)
        : mAnswer(answer)
    {
        QObject::connect(&mTimer, &QTimer::timeout, [this] { AnswerOpenBox(); });
        mTimer.start(5);
    }

    int Count() const { return titles.size(); }

    QStringList titles;
    QStringList texts;

private:
    void AnswerOpenBox()
    {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (box == nullptr)
            return;
        titles.append(box->windowTitle());
        texts.append(box->text());
        if (QAbstractButton* button = box->button(mAnswer))
            button->click();
        else
            box->reject();
    }

    QMessageBox::StandardButton mAnswer;
    QTimer mTimer;
};
