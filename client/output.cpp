// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/output.h"

#include "client/exitstatus.h"
#include "client/textwidth.h"

#include <QJsonDocument>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

constexpr int LabelWidth = 20;

QByteArray line(const QString &text)
{
    return text.toUtf8() + '\n';
}

} // namespace

Output::Output()
{
    errors().clear();
}

QStringList &Output::errors()
{
    // Stores and views tell of errors where they meet them, each without an output of its own.
    static QStringList texts;
    return texts;
}

void Output::rows(const Columns &columns, const QJsonArray &rows)
{
    if (mIsJson) {
        mDocument = rows;
        return;
    }
    const QStringList lines = Table::lines(columns, rows, terminalWidth());
    for (const QString &text : lines)
        write(line(text));
}

void Output::object(const Columns &columns, const QJsonObject &object)
{
    if (mIsJson) {
        mDocument = object;
        return;
    }
    for (const Column &column : columns) {
        const QString text = Table::text(object.value(QLatin1String(column.key)));
        if (!text.isEmpty())
            write(
                line(TextWidth::padded(QLatin1String(column.heading) + QLatin1Char(':'), LabelWidth) + text));
    }
}

void Output::done(const QString &sentence, const QJsonObject &facts)
{
    addFacts(facts);
    addFacts({ { QStringLiteral("message"), sentence } });
    message(sentence);
}

void Output::document(const QByteArray &document, const char *contentType)
{
    if (!mIsJson)
        return write(document);
    const QString text = QString::fromUtf8(document);
    const bool isText = text.toUtf8() == document;
    addFacts({ { QStringLiteral("contentType"), QLatin1String(contentType) },
        { QStringLiteral("encoding"), isText ? QStringLiteral("utf-8") : QStringLiteral("base64") },
        { QStringLiteral("data"), isText ? text : QString::fromLatin1(document.toBase64()) } });
}

void Output::addFacts(const QJsonObject &facts)
{
    QJsonObject all = mDocument.toObject();
    for (auto fact = facts.begin(); fact != facts.end(); ++fact)
        all[fact.key()] = fact.value();
    mDocument = all;
}

void Output::message(const QString &text)
{
    if (!mIsJson)
        write(line(printable(text)));
}

void Output::error(const QString &text)
{
    errors().append(text);
    note(text);
}

void Output::note(const QString &text)
{
    const QByteArray bytes = line(QStringLiteral("fennel-easctl: ") + printable(text));
    std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), stderr);
}

int Output::finish(int exitStatus)
{
    if (mIsJson) {
        if (exitStatus != ExitSuccess) {
            if (mDocument.isArray())
                mDocument = QJsonObject { { QStringLiteral("items"), mDocument } };
            addFacts({ { QStringLiteral("error"), errors().join(QLatin1Char('\n')) },
                { QStringLiteral("exitStatus"), exitStatus } });
        }
        if (!mDocument.isUndefined())
            write((mDocument.isArray() ? QJsonDocument(mDocument.toArray())
                                       : QJsonDocument(mDocument.toObject()))
                      .toJson(QJsonDocument::Indented));
    }
    if (std::fflush(stdout) == 0 && !mHasFailed && std::ferror(stdout) == 0)
        return exitStatus;
    error(QStringLiteral("cannot write to standard output: %1")
              .arg(QString::fromLocal8Bit(std::strerror(errno))));
    return exitStatus == ExitSuccess ? int(ExitFailure) : exitStatus;
}

void Output::write(const QByteArray &bytes)
{
    const auto size = std::size_t(bytes.size());
    if (std::fwrite(bytes.constData(), 1, size, stdout) != size)
        mHasFailed = true;
}

int Output::terminalWidth()
{
    constexpr int Usual = 80;
    if (!isatty(STDOUT_FILENO))
        return 0;
    winsize size {};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return size.ws_col;
    const int columns = qEnvironmentVariableIntValue("COLUMNS");
    return columns > 0 ? columns : Usual;
}

QString Output::printable(const QString &text)
{
    QString shown;
    for (const QChar character : text) {
        if (character == QLatin1Char('\n') || character == QLatin1Char('\t'))
            shown += character;
        else if (character.category() == QChar::Other_Control || character.category() == QChar::Other_Format)
            shown += QChar(QChar::ReplacementCharacter);
        else
            shown += character;
    }
    return shown;
}
