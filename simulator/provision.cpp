// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/command.h"

#include "simulator/protocolversion.h"
#include "simulator/wbxmltokens.h"

namespace Simulator {
namespace {

enum Status {
    Success = 1,
    SyntaxError = 2,
    NotFullyProvisionable = 139,
    DeviceInformationRequired = 165,
};
enum PolicyStatus { PolicyFound = 1, NoPolicy = 2, UnknownType = 3, WrongKey = 5 };

const QString policyPath = QStringLiteral("Policies/Policy");
const QString deviceInformation = QStringLiteral("Settings:DeviceInformation");
const QString statusName = QStringLiteral("Status");

WbxmlNode statusReply(int status)
{
    WbxmlNode root(QStringLiteral("Provision:Provision"));
    root.append(statusName, status);
    return root;
}

/** A document without the values that the version does not know. */
WbxmlNode documentFor(const WbxmlNode &document, int version)
{
    WbxmlNode known(document.name());
    for (const WbxmlNode &value : document.children()) {
        const auto token = WbxmlTokens::find(value.name());
        if (token && WbxmlTokens::existsAt(*token, version))
            known.append(value);
    }
    return known;
}

WbxmlNode &appendPolicy(WbxmlNode &policies, const QString &type, int status)
{
    WbxmlNode &node = policies.append(QStringLiteral("Policy"));
    node.append(QStringLiteral("PolicyType"), type);
    node.append(statusName, status);
    return node;
}

void appendPolicies(const CommandContext &context, const QString &wantedType, WbxmlNode &policies)
{
    const Policy usual;
    if (wantedType.compare(usual.type, Qt::CaseInsensitive) != 0) {
        appendPolicy(policies, wantedType, UnknownType);
        return;
    }
    if (context.policies.list.isEmpty()) {
        appendPolicy(policies, wantedType, NoPolicy);
        return;
    }
    context.device.provision.temporaryKey = context.nextKey();
    for (const Policy &policy : qAsConst(context.policies.list)) {
        WbxmlNode &node = appendPolicy(policies, policy.type, policy.status);
        if (policy.status != PolicyFound)
            continue;
        node.append(QStringLiteral("PolicyKey"), context.device.provision.temporaryKey);
        if (!policy.document.isNull())
            node.append(QStringLiteral("Data")).append(documentFor(policy.document, context.version()));
    }
}

void appendWipe(Wipe order, WbxmlNode &reply)
{
    if (order == Wipe::Device)
        reply.append(QStringLiteral("RemoteWipe"));
    else if (order == Wipe::Account)
        reply.append(QStringLiteral("AccountOnlyRemoteWipe"));
}

WbxmlNode policyReply(const CommandContext &context)
{
    const WbxmlNode &request = context.request.document;
    if (context.request.header("X-MS-PolicyKey") != "0")
        context.failures.append(QStringLiteral("the policies are asked for under a policy key"));
    const bool describes = request.has(deviceInformation);
    if (describes && context.version() < Version141)
        context.failures.append(QStringLiteral("a device information below 14.1"));
    if (!describes && context.version() >= Version141) {
        context.failures.append(QStringLiteral("no device information"));
        return statusReply(DeviceInformationRequired);
    }
    WbxmlNode reply(QStringLiteral("Provision:Provision"));
    if (describes)
        reply.append(deviceInformation).append(statusName, Success);
    reply.append(statusName, Success);
    const Wipe wipe = context.policies.wipeFor(context.request.deviceId, context.version());
    if (wipe != Wipe::None)
        appendWipe(wipe, reply);
    else
        appendPolicies(context, request.text(policyPath + QStringLiteral("/PolicyType")),
            reply.append(QStringLiteral("Policies")));
    return reply;
}

WbxmlNode acknowledgementReply(const CommandContext &context)
{
    const WbxmlNode policy = context.request.document.at(policyPath);
    const QString verdict = policy.text(statusName);
    const QString key = policy.text(QStringLiteral("PolicyKey"));
    ProvisionState &state = context.device.provision;
    if (context.request.header("X-MS-PolicyKey") != key.toUtf8())
        context.failures.append(QStringLiteral("a policy is acknowledged under another policy key"));
    if (context.request.document.has(deviceInformation))
        context.failures.append(QStringLiteral("a device information in an acknowledgement"));
    context.policies.verdicts.insert(context.request.deviceId, verdict);

    const QString type = policy.text(QStringLiteral("PolicyType"));
    const bool isKnown = !key.isEmpty() && key == state.temporaryKey;
    if (isKnown && context.policies.wantsCompliance && verdict != QLatin1String("1"))
        return statusReply(NotFullyProvisionable);
    WbxmlNode reply = statusReply(Success);
    WbxmlNode &answer =
        appendPolicy(reply.append(QStringLiteral("Policies")), type, isKnown ? PolicyFound : WrongKey);
    if (!isKnown)
        return reply;
    state = { QString(), context.nextKey(), context.policies.revision };
    answer.append(QStringLiteral("PolicyKey"), state.key);
    return reply;
}

WbxmlNode wipeReply(const CommandContext &context)
{
    const WbxmlNode &request = context.request.document;
    ServerPolicies &policies = context.policies;
    const QString &device = context.request.deviceId;
    const Wipe order = policies.wipeFor(device, context.version());
    const QString acknowledged =
        order == Wipe::Account ? QStringLiteral("AccountOnlyRemoteWipe") : QStringLiteral("RemoteWipe");
    if (!request.children().isEmpty() && (order == Wipe::None || !request.has(acknowledged)))
        context.failures.append(QStringLiteral("a wipe is acknowledged that was not ordered"));
    WbxmlNode reply = statusReply(Success);
    if (!request.has(acknowledged))
        appendWipe(order, reply);
    else if (order != Wipe::None)
        policies.wipeVerdicts.insert(device, request.text(acknowledged + QStringLiteral("/Status")));
    return reply;
}

} // namespace

CommandReply handleProvision(const CommandContext &context)
{
    const WbxmlNode &request = context.request.document;
    if (request.name() != QLatin1String("Provision:Provision"))
        return CommandReply::of(statusReply(SyntaxError));
    if (!request.has(policyPath))
        return CommandReply::of(wipeReply(context));
    return CommandReply::of(request.has(policyPath + QStringLiteral("/Status"))
            ? acknowledgementReply(context)
            : policyReply(context));
}

} // namespace Simulator
