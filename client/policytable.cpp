// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/policytable.h"

#include <QJsonObject>
#include <QSet>

#include <algorithm>
#include <array>
#include <iterator>

namespace {

constexpr char Administrator[] =
    "This device cannot do that; only the administrator of the server can change the policy.";
constexpr char Unset[] = "The server leaves it open; only its administrator can change that.";

/** A value that stands for none in policies that are one of several words. */
constexpr int NotSet = -1;

struct Policy
{
    /** The published name. */
    const char *name;
    /** The number by which the daemon tells that the device fails it; 0 if the device is not judged by it. */
    int number;
    const char *words;
    /** What a value demands, in words. */
    QString (*demand)(const QVariant &value);
    /** What the user can do; %1 stands for the value. */
    const char *help = Administrator;
};

template <std::size_t Count>
QString wordOf(const QVariant &value, const std::array<const char *, Count> &words)
{
    const int index = value.toInt();
    if (index == NotSet)
        return QStringLiteral("left open");
    return index >= 0 && index < int(Count) ? QString::fromLatin1(words.at(std::size_t(index)))
                                            : QString::number(index);
}

QString allowed(const QVariant &value)
{
    return value.toBool() ? QStringLiteral("allowed") : QStringLiteral("not allowed");
}

QString required(const QVariant &value)
{
    return value.toBool() ? QStringLiteral("required") : QStringLiteral("not required");
}

QString bluetooth(const QVariant &value)
{
    return wordOf<3>(value, { "not allowed", "hands-free sets only", "allowed" });
}

QString age(const QVariant &value)
{
    return wordOf<9>(value,
        { "all", "a day", "three days", "a week", "two weeks", "a month", "three months", "half a year",
            "what is not done" });
}

QString negotiation(const QVariant &value)
{
    return wordOf<3>(value, { "not allowed", "strong ones only", "allowed" });
}

QString cipher(const QVariant &value)
{
    return wordOf<5>(value, { "Triple DES", "DES", "RC2 (128 bits)", "RC2 (64 bits)", "RC2 (40 bits)" });
}

QString hash(const QVariant &value)
{
    return wordOf<2>(value, { "SHA-1", "MD5" });
}

/** 0 demands nothing. */
QString limit(const QVariant &value, const char *words)
{
    return value.toUInt() == 0 ? QStringLiteral("no limit") : QString::fromLatin1(words).arg(value.toUInt());
}

QString attempts(const QVariant &value)
{
    return limit(value, "%1 at most");
}

QString history(const QVariant &value)
{
    return limit(value, "the last %1");
}

QString days(const QVariant &value)
{
    return limit(value, "%1 days at most");
}

QString bytes(const QVariant &value)
{
    return limit(value, "%1 bytes at most");
}

QString seconds(const QVariant &value)
{
    // From here on the number stands for a device that never locks itself.
    constexpr uint Never = 9999;
    return value.toUInt() < Never ? limit(value, "%1 s at most") : QStringLiteral("no limit");
}

QString kinds(const QVariant &value)
{
    return limit(value, "%1 at least");
}

QString characters(const QVariant &value)
{
    return limit(value, "%1 characters at least");
}

QString cut(const QVariant &value)
{
    return value.toInt() < 0 ? QStringLiteral("whole")
                             : QStringLiteral("%1 bytes at most").arg(value.toInt());
}

QString applications(const QVariant &value)
{
    const QStringList entries = value.toStringList();
    return entries.isEmpty() ? QStringLiteral("no demand") : entries.join(QStringLiteral(", "));
}

constexpr Policy Policies[] = {
    { "AllowBrowser", 7, "web browser", &allowed },
    { "AllowCamera", 8, "camera", &allowed },
    { "AllowConsumerEmail", 9, "private mail accounts", &allowed },
    { "AllowDesktopSync", 0, "sync with a computer", &allowed },
    { "AllowHTMLEmail", 11, "mail in HTML", &allowed },
    { "AllowInternetSharing", 12, "sharing of the network", &allowed },
    { "AllowIrDA", 0, "infrared", &allowed },
    { "AllowPOPIMAPEmail", 14, "mail over POP and IMAP", &allowed },
    { "AllowRemoteDesktop", 15, "remote desktop", &allowed },
    { "AllowSimpleDevicePassword", 0, "simple lock codes", &allowed },
    { "AllowSMIMESoftCerts", 0, "S/MIME with certificates in files", &allowed },
    { "AllowStorageCard", 0, "storage card", &allowed },
    { "AllowTextMessaging", 20, "text messages", &allowed },
    { "AllowUnsignedApplications", 21, "unsigned applications", &allowed },
    { "AllowUnsignedInstallationPackages", 22, "unsigned packages", &allowed },
    { "AllowWiFi", 23, "Wi-Fi", &allowed },
    { "AlphanumericDevicePasswordRequired", 2, "letters in the lock code", &required },
    { "AttachmentsEnabled", 24, "attachments", &allowed },
    { "DevicePasswordEnabled", 1, "device lock", &required, "Set a device lock." },
    { "PasswordRecoveryEnabled", 0, "recovery of the lock code", &allowed },
    { "RequireDeviceEncryption", 26, "encrypted device", &required },
    { "RequireEncryptedSMIMEMessages", 27, "encrypted mail", &required },
    { "RequireManualSyncWhenRoaming", 28, "sync by hand when roaming", &required },
    { "RequireSignedSMIMEMessages", 29, "signed mail", &required },
    { "RequireStorageCardEncryption", 0, "encrypted storage card", &required },
    { "AllowBluetooth", 6, "Bluetooth", &bluetooth },
    { "DevicePasswordExpiration", 31, "age of the lock code", &days },
    { "DevicePasswordHistory", 32, "lock codes not to be used again", &history },
    { "MaxAttachmentSize", 33, "size of attachments", &bytes },
    { "MaxCalendarAgeFilter", 34, "past events", &age,
        "Let the calendar of the account keep fewer past events." },
    { "MaxDevicePasswordFailedAttempts", 35, "wrong lock codes", &attempts,
        "Let the device lock take %1 wrong codes." },
    { "MaxEmailAgeFilter", 36, "past mail", &age,
        "Keep less mail: fennel-easctl account edit --past-time %1" },
    { "MaxInactivityTimeDeviceLock", 5, "time until the device locks", &seconds,
        "Let the device lock itself after %1 s or less." },
    { "MinDevicePasswordComplexCharacters", 2, "kinds of characters in the lock code", &kinds },
    { "MinDevicePasswordLength", 3, "length of the lock code", &characters,
        "Set a lock code of %1 characters or more." },
    { "AllowSMIMEEncryptionAlgorithmNegotiation", 0, "choice of ciphers", &negotiation },
    { "MaxEmailBodyTruncationSize", 37, "text of a mail", &cut },
    { "MaxEmailHTMLBodyTruncationSize", 38, "HTML of a mail", &cut },
    { "RequireEncryptionSMIMEAlgorithm", 0, "cipher of mail", &cipher },
    { "RequireSignedSMIMEAlgorithm", 0, "hash of signatures", &hash },
    { "ApprovedApplicationList", 42, "only these applications", &applications },
    { "UnapprovedInROMApplicationList", 42, "none of these applications", &applications },
};

/** The policies without which the server was told that the device does not obey. */
constexpr std::array<int, 4> CriticalNumbers { 1, 3, 5, 35 };

bool isKind(const QVariant &value, QVariant::Type kind)
{
    return value.type() == kind;
}

bool isFlag(const Policy &policy)
{
    return policy.demand == &allowed || policy.demand == &required;
}

/** Some numbers stand for several policies; the values tell which of them is meant. */
bool fails(const Policy &policy, const QVariant &value, const FailedPolicyMap &failed)
{
    const auto found = failed.constFind(policy.number);
    if (policy.number == 0 || found == failed.cend())
        return false;
    if (isKind(value, QVariant::StringList) || isKind(value, QVariant::List))
        return !value.toStringList().isEmpty();
    // A number may hide that a demand under the same number, which is a yes or no, fails as well.
    if (isKind(value, QVariant::Bool))
        return isKind(*found, QVariant::Bool) || value.toBool();
    return !isKind(*found, QVariant::Bool);
}

QString helpFor(const Policy &policy, const QVariant &value)
{
    if (!isKind(value, QVariant::StringList) && value.toInt() == NotSet)
        return QString::fromLatin1(Unset);
    const QString help = QString::fromLatin1(policy.help);
    return help.contains(QLatin1String("%1")) ? help.arg(value.toString()) : help;
}

QJsonObject row(const QString &name, const QString &words, const QVariant &value, const QString &demand)
{
    return { { QStringLiteral("name"), name }, { QStringLiteral("policy"), words },
        { QStringLiteral("value"), QJsonValue::fromVariant(value) }, { QStringLiteral("demands"), demand },
        { QStringLiteral("met"), true } };
}

void fail(QJsonObject &row, const QString &help)
{
    row[QStringLiteral("met")] = false;
    row[QStringLiteral("help")] = help;
}

QJsonObject describeOne(const Policy &policy, const QVariant &value, const FailedPolicyMap &failed)
{
    QJsonObject object =
        row(QLatin1String(policy.name), QLatin1String(policy.words), value, policy.demand(value));
    if (fails(policy, value, failed))
        fail(object, helpFor(policy, value));
    return object;
}

/** What may be meant by a number and a value alone. */
QList<const Policy *> candidates(int number, const QVariant &value)
{
    QList<const Policy *> found;
    for (const Policy &policy : Policies) {
        if (policy.number == number && isFlag(policy) == isKind(value, QVariant::Bool))
            found.append(&policy);
    }
    return found;
}

QString wordsFor(int number, const QVariant &value)
{
    QStringList words;
    const QList<const Policy *> meant = candidates(number, value);
    for (const Policy *policy : meant)
        words.append(QLatin1String(policy->words));
    return words.isEmpty() ? QStringLiteral("policy %1").arg(number) : words.join(QStringLiteral(" or "));
}

/** A policy that fails and whose value the document does not have. */
QJsonObject describeWithoutDocument(int number, const QVariant &value)
{
    const QList<const Policy *> meant = candidates(number, value);
    if (meant.size() == 1)
        return describeOne(*meant.first(), value, { { number, value } });
    const QString words = wordsFor(number, value);
    QJsonObject object = row(words, words, value, applications(value));
    fail(object, QString::fromLatin1(Administrator));
    return object;
}

} // namespace

PolicyTable::Verdict PolicyTable::verdictOf(const FailedPolicyMap &failed)
{
    if (failed.isEmpty())
        return Verdict::Met;
    const bool isCritical = std::any_of(CriticalNumbers.cbegin(), CriticalNumbers.cend(),
        [&failed](int number) { return failed.contains(number); });
    return isCritical ? Verdict::CriticalFailed : Verdict::PartlyMet;
}

QJsonArray PolicyTable::describe(const QVariantMap &document, const FailedPolicyMap &failed)
{
    QJsonArray rows;
    QVariantMap others = document;
    QSet<int> open = QSet<int>(failed.keyBegin(), failed.keyEnd());
    for (const Policy &policy : Policies) {
        const auto found = document.constFind(QLatin1String(policy.name));
        if (found == document.cend())
            continue;
        others.remove(found.key());
        rows.append(describeOne(policy, *found, failed));
        if (fails(policy, *found, failed))
            open.remove(policy.number);
    }
    for (auto other = others.cbegin(); other != others.cend(); ++other)
        rows.append(row(other.key(), other.key(), *other, other->toString()));
    for (auto policy = failed.cbegin(); policy != failed.cend(); ++policy) {
        if (open.contains(policy.key()))
            rows.append(describeWithoutDocument(policy.key(), *policy));
    }
    return rows;
}

QStringList PolicyTable::failedPolicies(const FailedPolicyMap &failed)
{
    QStringList words;
    for (auto policy = failed.cbegin(); policy != failed.cend(); ++policy)
        words.append(wordsFor(policy.key(), *policy));
    return words;
}
