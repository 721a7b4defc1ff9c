// The desktop program's message boxes: the Windows flags mapped to a Qt box, and the answers
// mapped back.

#include "ui/QtMessageBox.h"

#include <QAbstractButton>
#include <QPushButton>

#include <gtest/gtest.h>

using namespace koqdde::ui;

TEST(UiMessageBox, FlagsMapToIconButtonsAndDefault) {
    const MessageBoxSpec warning = MapMessageBoxFlags(kWarningFlags);
    EXPECT_EQ(warning.icon, QMessageBox::Warning);
    EXPECT_EQ(warning.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    EXPECT_EQ(warning.defaultButton, QMessageBox::Ok);
    EXPECT_TRUE(warning.stayOnTop);

    EXPECT_EQ(MapMessageBoxFlags(kInformationFlags).icon, QMessageBox::Information);
    EXPECT_EQ(MapMessageBoxFlags(MB_OK).icon, QMessageBox::NoIcon);
    EXPECT_FALSE(MapMessageBoxFlags(MB_OK).stayOnTop);
    EXPECT_EQ(MapMessageBoxFlags(MB_ICONHAND).icon, QMessageBox::Critical);

    const MessageBoxSpec question = MapMessageBoxFlags(kQuestionFlags);
    EXPECT_EQ(question.icon, QMessageBox::Warning);
    EXPECT_EQ(question.buttons, QMessageBox::Yes | QMessageBox::No);
    EXPECT_EQ(MapMessageBoxFlags(MB_YESNO).defaultButton, QMessageBox::Yes);

    const MessageBoxSpec three = MapMessageBoxFlags(MB_YESNOCANCEL | MB_DEFBUTTON2);
    EXPECT_EQ(three.buttons, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
    EXPECT_EQ(three.escapeButton, QMessageBox::Cancel);
    EXPECT_EQ(MapMessageBoxFlags(MB_OKCANCEL).escapeButton, QMessageBox::Cancel);

    EXPECT_EQ(MessageBoxResult(QMessageBox::Cancel), IDCANCEL);
}

TEST(UiMessageBox, TheHandlerShowsTheTextAndReturnsTheWindowsAnswer) {
    QString seenText, seenTitle;
    QMessageBox::StandardButton seenDefault = QMessageBox::NoButton;
    QtMessageBoxHandler handler([&](QMessageBox& box) {
        seenText = box.text();
        seenTitle = box.windowTitle();
        seenDefault = box.standardButton(box.defaultButton());
        return QMessageBox::Yes;
    });
    MessageBoxHandlerScope scope(&handler);
    const int answer =
        MessageBoxExW(nullptr, L"是否覆盖已有配置文件?", kMessageCaption, kQuestionFlags, 0);
    EXPECT_EQ(answer, IDYES);
    EXPECT_EQ(seenText, QStringLiteral("是否覆盖已有配置文件?"));
    EXPECT_EQ(seenTitle, QStringLiteral("Quorvel"));
    EXPECT_EQ(seenDefault, QMessageBox::No); // MB_DEFBUTTON2

    QtMessageBoxHandler pressesDefault(
        [](QMessageBox& box) { return box.standardButton(box.defaultButton()); });
    MessageBoxHandlerScope inner(&pressesDefault);
    EXPECT_EQ(ShowWarning(L"当前配置文件不能覆盖!"), IDOK);
    EXPECT_EQ(MessageBoxExW(nullptr, L"q", kMessageCaption, kQuestionFlags, 0), IDNO);
}
