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
    // Clicks the button of this text, shortcut marks left out ("Restore" for "&Restore").
    explicit ModalAnswerer(const QString& buttonText)
        : ModalAnswerer(QMessageBox::NoButton)
    {
        mButtonText = buttonText;
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
        if (QAbstractButton* button = Chosen(*box))
            button->click();
        else
            box->reject();
    }

    QAbstractButton* Chosen(const QMessageBox& box) const
    {
        if (mButtonText.isEmpty())
            return box.button(mAnswer);
        for (QAbstractButton* button : box.buttons())
        {
            if (button->text().remove(QLatin1Char('&')) == mButtonText)
                return button;
        }
        return nullptr;
    }

    QMessageBox::StandardButton mAnswer;
    QString mButtonText;
    QTimer mTimer;
};
