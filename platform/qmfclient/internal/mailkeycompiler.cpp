// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/mailkeycompiler.h"

#include "internal/statusflags.h"

#include <QStringList>

#include <algorithm>

namespace {

bool isNarrow(const MailKeyNode &key)
{
    switch (key.property) {
    case MailKeyNode::Id:
    case MailKeyNode::ServerUid:
        return key.comparison == MailKeyNode::Equal || key.comparison == MailKeyNode::Includes;
    case MailKeyNode::CustomField:
        return key.comparison == MailKeyNode::Equal || key.comparison == MailKeyNode::Present;
    case MailKeyNode::PreviousParentFolderId:
        return key.comparison != MailKeyNode::Excludes;
    default:
        return false;
    }
}

/** Whether a key asks for few messages by something that has an index. */
bool narrows(const MailKeyNode &key)
{
    if (key.kind == MailKeyNode::Condition)
        return isNarrow(key);
    const auto childNarrows = [](const MailKeyNode::Pointer &child) {
        return narrows(*child);
    };
    return key.kind == MailKeyNode::And
        && std::any_of(key.children.cbegin(), key.children.cend(), childNarrows);
}

class Compiler
{
public:
    Compiler(bool folders, bool narrow)
        : mFolders(folders)
        , mNarrow(narrow)
    {
    }

    QString compile(const MailKeyNode &key)
    {
        switch (key.kind) {
        case MailKeyNode::Everything:
            return QStringLiteral("1");
        case MailKeyNode::Nothing:
            return QStringLiteral("0");
        case MailKeyNode::Condition:
            return condition(key);
        case MailKeyNode::Not:
            // A comparison with a missing value is neither true nor false; "not" takes it in.
            return QLatin1String("NOT COALESCE(") + compile(*key.children.first()) + QLatin1String(", 0)");
        case MailKeyNode::And:
            return joined(key, QStringLiteral(" AND "));
        case MailKeyNode::Or:
            break;
        }
        return joined(key, QStringLiteral(" OR "));
    }

    QVariantList values;

private:
    QString joined(const MailKeyNode &key, const QString &separator)
    {
        QStringList parts;
        for (const MailKeyNode::Pointer &child : key.children)
            parts.append(compile(*child));
        return QLatin1Char('(') + parts.join(separator) + QLatin1Char(')');
    }

    QString condition(const MailKeyNode &key)
    {
        switch (key.property) {
        case MailKeyNode::Status:
            return status(key);
        case MailKeyNode::CustomField:
            return customField(key);
        case MailKeyNode::AncestorFolderIds:
            return descendants(key);
        default:
            return comparison(column(key.property), key);
        }
    }

    QString column(MailKeyNode::Property property) const
    {
        switch (property) {
        case MailKeyNode::ParentAccountId:
            // An account is most of the table. Without statistics SQLite takes its index for the best of all,
            // and a sign keeps it from that.
            return mNarrow ? QStringLiteral("+account") : QStringLiteral("account");
        case MailKeyNode::ParentFolderId:
            return mFolders ? QStringLiteral("parent") : QStringLiteral("folder");
        case MailKeyNode::PreviousParentFolderId:
            return QStringLiteral("previous_folder");
        case MailKeyNode::ServerUid:
            return QStringLiteral("server_uid");
        case MailKeyNode::TimeStamp:
            return QStringLiteral("date");
        case MailKeyNode::ReceptionTimeStamp:
            return QStringLiteral("received");
        case MailKeyNode::DisplayName:
            return QStringLiteral("COALESCE(NULLIF(display_name, ''), path)");
        case MailKeyNode::Path:
            return QStringLiteral("path");
        default:
            return QStringLiteral("id");
        }
    }

    QString comparison(const QString &column, const MailKeyNode &key)
    {
        if (key.comparison == MailKeyNode::Includes || key.comparison == MailKeyNode::Excludes)
            return inclusion(column, key);
        const QVariant value = key.values.first();
        if (value.isNull()) // An invalid date equals messages without a date, and compares with nothing else.
            return key.comparison == MailKeyNode::Equal   ? column + QLatin1String(" IS NULL")
                : key.comparison == MailKeyNode::NotEqual ? column + QLatin1String(" IS NOT NULL")
                                                          : QStringLiteral("0");
        // Said with the number itself, this is what the index on moved messages is for.
        if (key.property == MailKeyNode::PreviousParentFolderId && key.comparison == MailKeyNode::NotEqual
            && value.toLongLong() == 0)
            return column + QLatin1String(" <> 0");
        values.append(value);
        return column + QLatin1String(operatorText(key.comparison)) + QLatin1Char('?');
    }

    static const char *operatorText(MailKeyNode::Comparison comparison)
    {
        switch (comparison) {
        case MailKeyNode::NotEqual:
            return " <> ";
        case MailKeyNode::LessThan:
            return " < ";
        case MailKeyNode::LessThanEqual:
            return " <= ";
        case MailKeyNode::GreaterThan:
            return " > ";
        case MailKeyNode::GreaterThanEqual:
            return " >= ";
        default:
            return " = ";
        }
    }

    QString inclusion(const QString &column, const MailKeyNode &key)
    {
        const bool includes = key.comparison == MailKeyNode::Includes;
        if (key.values.isEmpty())
            return includes ? QStringLiteral("0") : QStringLiteral("1");
        QString list;
        if (key.property == MailKeyNode::ServerUid) {
            values += key.values;
            list = QStringList(QVector<QString>(key.values.size(), QStringLiteral("?")).toList())
                       .join(QLatin1Char(','));
        } else {
            // One bound value, so that a list of any length is one and the same prepared statement.
            QStringList numbers;
            for (const QVariant &value : key.values)
                numbers.append(value.toString());
            values.append(QString(QLatin1Char('[') + numbers.join(QLatin1Char(',')) + QLatin1Char(']')));
            list = QStringLiteral("SELECT value FROM json_each(?)");
        }
        return column + QLatin1String(includes ? " IN (" : " NOT IN (") + list + QLatin1Char(')');
    }

    QString status(const MailKeyNode &key)
    {
        const quint64 unloaded = maskOf(messageFlags, "UnloadedData");
        qlonglong mask = key.values.first().toLongLong();
        if (!mFolders)
            mask &= ~qlonglong(unloaded);
        // The number itself stands in the text, where SQLite can find the index on messages read here.
        switch (key.comparison) {
        case MailKeyNode::Includes:
            return QStringLiteral("(status & %1) <> 0").arg(mask);
        case MailKeyNode::Excludes:
            return QStringLiteral("(status & %1) = 0").arg(mask);
        case MailKeyNode::NotEqual:
            return QStringLiteral("status <> %1").arg(mask);
        default:
            return QStringLiteral("status = %1").arg(mask);
        }
    }

    QString customField(const MailKeyNode &key)
    {
        values += key.values;
        const QString owners = QStringLiteral("(SELECT owner FROM message_fields WHERE name = ?");
        switch (key.comparison) {
        case MailKeyNode::Absent:
            return QLatin1String("id NOT IN ") + owners + QLatin1Char(')');
        case MailKeyNode::Present:
            return QLatin1String("id IN ") + owners + QLatin1Char(')');
        case MailKeyNode::NotEqual:
            return QLatin1String("id IN ") + owners + QLatin1String(" AND value <> ?)");
        default:
            return QLatin1String("id IN ") + owners + QLatin1String(" AND value = ?)");
        }
    }

    QString descendants(const MailKeyNode &key)
    {
        values.append(key.values.first());
        const QString below =
            QStringLiteral("(WITH RECURSIVE below(id) AS (SELECT id FROM folders WHERE parent = ?"
                           " UNION SELECT folders.id FROM folders JOIN below ON folders.parent = below.id)"
                           " SELECT id FROM below)");
        return QLatin1String(key.comparison == MailKeyNode::Excludes ? "id NOT IN " : "id IN ") + below;
    }

    const bool mFolders;
    const bool mNarrow;
};

CompiledKey compiled(const MailKeyNode &key, bool folders)
{
    const bool narrow = !folders && narrows(key);
    Compiler compiler(folders, narrow);
    const QString condition = compiler.compile(key);
    return { condition, compiler.values, narrow ? QStringLiteral("+id") : QStringLiteral("id") };
}

} // namespace

CompiledKey compileMessageKey(const MailKeyNode &key)
{
    return compiled(key, false);
}

CompiledKey compileFolderKey(const MailKeyNode &key)
{
    return compiled(key, true);
}
