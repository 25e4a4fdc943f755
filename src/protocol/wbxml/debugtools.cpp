// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/wbxml/debugtools.h"

#include "application/base/logging.h"
#include "protocol/wbxml/wbxmllogger.h"

#include <QSettings>
#include <QStringList>

namespace {

enum class Level { Debug, Info, Warning, Critical, Fatal };

struct CategoryLevel
{
    const char *category;
    Level level;
};

CategoryLevel levels[] = {
    { "Fennel.eas", Level::Warning },
    { "Fennel.easwbxml", Level::Warning },
    { "Fennel.easnetwork", Level::Warning },
};

QLoggingCategory::CategoryFilter previousFilter = nullptr;

Level levelFromText(const QString &text)
{
    const struct
    {
        char letter;
        Level level;
    } letters[] = {
        { 'd', Level::Debug },
        { 'i', Level::Info },
        { 'w', Level::Warning },
        { 'c', Level::Critical },
    };
    for (const auto &entry : letters) {
        if (text.contains(QLatin1Char(entry.letter)))
            return entry.level;
    }
    return Level::Fatal;
}

void easCategoryFilter(QLoggingCategory *category)
{
    for (const CategoryLevel &entry : levels) {
        if (qstrcmp(category->categoryName(), entry.category) != 0)
            continue;
        category->setEnabled(QtDebugMsg, entry.level <= Level::Debug);
        category->setEnabled(QtInfoMsg, entry.level <= Level::Info);
        category->setEnabled(QtWarningMsg, entry.level <= Level::Warning);
        category->setEnabled(QtCriticalMsg, entry.level <= Level::Critical);
        return;
    }
    if (previousFilter != nullptr)
        previousFilter(category);
}

void readLevels(QSettings &settings)
{
    settings.beginGroup(QStringLiteral("logging"));
    for (CategoryLevel &entry : levels) {
        const QString name = QString::fromLatin1(entry.category);
        const bool keepsItsLevel = &entry == &levels[0] && !settings.contains(name);
        if (!keepsItsLevel)
            entry.level = levelFromText(settings.value(name, QStringLiteral("w")).toString());
    }
    settings.endGroup();
}

bool isSecretHeader(const QByteArray &name)
{
    const QByteArray lower = name.toLower();
    for (const char *word : { "authorization", "authenticate", "cookie", "policykey", "token", "secret" }) {
        if (lower.contains(word))
            return true;
    }
    return false;
}

} // namespace

void DebugTools::init()
{
    const QString application = QStringLiteral("eas-fennel");
    QSettings settings(QSettings::UserScope, application, application);
    if (settings.allKeys().isEmpty()) {
        settings.setValue(QStringLiteral("logging/Fennel.eas"), QStringLiteral("w"));
        settings.sync();
    }
    readLevels(settings);

    const auto previous = QLoggingCategory::installFilter(easCategoryFilter);
    if (previous != easCategoryFilter) // a second call must not make the filter its own predecessor
        previousFilter = previous;
    qCInfo(eas()) << "Filename: " << settings.fileName();
}

void DebugTools::dumpHexData(const QByteArray &data)
{
    constexpr int bytesPerLine = 16;
    if (!eas().isInfoEnabled())
        return;
    for (int start = 0; start < data.size(); start += bytesPerLine) {
        const int end = qMin(start + bytesPerLine, data.size());
        QStringList bytes;
        for (int i = start; i < end; ++i)
            bytes.append(QString::asprintf("0x%2.2x", static_cast<quint8>(data.at(i))));
        const bool isFull = end - start == bytesPerLine;
        qCInfo(eas()).noquote().nospace() << QString::asprintf("%8.8x ", static_cast<uint>(start))
                                          << bytes.join(QStringLiteral(", ")) << (isFull ? "," : "");
    }
}

void DebugTools::dumpWbxmlData(const QDebug &debug, const QByteArray &data)
{
    if (data.isEmpty()) {
        QDebug output(debug);
        output.nospace().noquote() << "WBXML tree: <empty>\n";
        return;
    }
    WbxmlLogger(debug).parse(data);
}

QString DebugTools::headersForLog(const QList<QPair<QByteArray, QByteArray>> &headers)
{
    constexpr int longestValue = 512;
    QStringList lines;
    for (const auto &header : headers) {
        QByteArray value = isSecretHeader(header.first) ? QByteArrayLiteral("...") : header.second;
        if (value.size() > longestValue)
            value = value.left(longestValue) + "...";
        lines.append(QString::fromLatin1(header.first) + QStringLiteral(": ") + QString::fromLatin1(value));
    }
    return lines.join(QStringLiteral("; "));
}
