// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/htmltext.h"

#include "support/testmain.h"

#include <QtTest>

/** HTML of messages reads like text. */
class HtmlTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void htmlReadsLikeText_data()
    {
        QTest::addColumn<QString>("html");
        QTest::addColumn<QString>("text");
        const auto row = [](const char *name, const char *html, const char *text) {
            QTest::newRow(name) << QString::fromUtf8(html) << QString::fromUtf8(text);
        };
        row("a break at the end of a line is one break", "one<br>\ntwo<br/>\r\nthree", "one\ntwo\nthree");
        row("lines of the source are blanks", "one\n  two\tthree", "one two three");
        row("paragraphs stand on lines of their own", "<p>one</p>\n\n<p>two</p>", "one\ntwo");
        row("two breaks leave a line free", "one<br><br>two", "one\n\ntwo");
        row("cells of a row stand apart", "<tr><td>a</td><td>b</td></tr><tr><td>c</td></tr>", "a b\nc");
        row("what is preformatted stays", "<pre>a\n  b</pre>", "a\n  b");
        row("styles and comments are not shown", "<style>p{}</style>a<!-- <p>no</p> -->b", "ab");
        row("named characters", "&lt;Gr&uuml;&szlig;e&gt;&nbsp;&euro;5 &amp; &hellip;", "<Grüße> €5 & …");
        row("numbered characters", "&#228;&#xE4;&#128512;", "ää😀");
        row("an unknown name stays", "&nonsense; &", "&nonsense; &");
        row("a reference is resolved once", "&amp;lt;", "&lt;");
        row("a soft hyphen is no character", "Donau&shy;dampf", "Donaudampf");
        row("an open tag at the end", "one<p", "one<p");
    }

    void htmlReadsLikeText()
    {
        QFETCH(QString, html);
        QTEST(HtmlText::toPlain(html), "text");
    }
};

FENNEL_REGISTER_TEST(HtmlTextTest)
#include "htmltexttest.moc"
