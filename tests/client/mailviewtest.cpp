// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/mailview.h"

#include "client/output.h"
#include "support/testmain.h"

#include <QtTest>

/** @short What a server names can neither leave a folder nor move a cursor. */
class MailViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aPartIsSavedUnderASafeName_data();
    void aPartIsSavedUnderASafeName();
    void aLongNameFitsAFileSystem();
    void htmlIsShownAsText();
    void controlCharactersAreNotPrinted();
};

namespace {

QMailMessagePart partCalled(const QString &name)
{
    QMailMessageContentType type("application/octet-stream");
    type.setName("=?UTF-8?B?" + name.toUtf8().toBase64() + "?=");
    return QMailMessagePart::fromData(QByteArray("x"),
        QMailMessageContentDisposition(QMailMessageContentDisposition::Attachment), type,
        QMailMessageBody::Base64);
}

} // namespace

void MailViewTest::aPartIsSavedUnderASafeName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("saved");
    QTest::newRow("an ordinary name stays")
        << QStringLiteral("Bericht März.pdf") << QStringLiteral("Bericht März.pdf");
    QTest::newRow("a path stays in the folder")
        << QStringLiteral("../../etc/passwd") << QStringLiteral("_.._etc_passwd");
    QTest::newRow("a hidden file is seen") << QStringLiteral(".bashrc") << QStringLiteral("bashrc");
    QTest::newRow("a line break is no line break") << QStringLiteral("a\nb") << QStringLiteral("a_b");
    QTest::newRow("a right-to-left mark hides no ending")
        << QStringLiteral("gpj.\u202Eexe") << QStringLiteral("gpj._exe");
}

void MailViewTest::aPartIsSavedUnderASafeName()
{
    QFETCH(QString, name);
    QFETCH(QString, saved);
    QCOMPARE(MailView::safeFileName(partCalled(name)), saved);
}

void MailViewTest::aLongNameFitsAFileSystem()
{
    const QString saved = MailView::safeFileName(partCalled(QString(4096, QChar(0x00FC))));
    QVERIFY(!saved.isEmpty());
    QVERIFY(saved.toUtf8().size() <= 200);
}

void MailViewTest::htmlIsShownAsText()
{
    QMailMessage message;
    message.setBody(QMailMessageBody::fromData(
        QStringLiteral("<html><head><style>p{}</style></head><body><p>One &amp; two</p>three</body></html>"),
        QMailMessageContentType("text/html; charset=UTF-8"), QMailMessageBody::EightBit));
    QCOMPARE(MailView::text(message), QStringLiteral("One & two\nthree"));
}

void MailViewTest::controlCharactersAreNotPrinted()
{
    const QString shown = Output::printable(QStringLiteral("a\u001B[2Jb\u202Ec\td"));
    QVERIFY(!shown.contains(QChar(0x1B)));
    QVERIFY(!shown.contains(QChar(0x202E)));
    QVERIFY(shown.startsWith(QLatin1Char('a')) && shown.endsWith(QStringLiteral("c\td")));
}

FENNEL_REGISTER_TEST(MailViewTest)
#include "mailviewtest.moc"
