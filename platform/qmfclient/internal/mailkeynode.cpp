// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/mailkeynode.h"

namespace {

const MailKeyNode *combined(
    MailKeyNode::Kind kind, const MailKeyNode::Pointer &left, const MailKeyNode::Pointer &right)
{
    auto *node = new MailKeyNode(kind);
    // One flat list for a & b & c, so that a long chain is no deep tree.
    for (const MailKeyNode::Pointer &key : { left, right }) {
        if (key->kind == kind)
            node->children += key->children;
        else
            node->children.append(key);
    }
    return node;
}

} // namespace

const MailKeyNode *MailKeyNode::negated(const Pointer &key)
{
    if (key->kind == Not)
        return key->children.first().data();
    if (key->kind == Everything)
        return new MailKeyNode(Nothing);
    if (key->kind == Nothing)
        return new MailKeyNode(Everything);
    auto *node = new MailKeyNode(Not);
    node->children.append(key);
    return node;
}

const MailKeyNode *MailKeyNode::both(const Pointer &left, const Pointer &right)
{
    if (left->kind == Everything || right->kind == Nothing)
        return right.data();
    if (right->kind == Everything || left->kind == Nothing)
        return left.data();
    return combined(And, left, right);
}

const MailKeyNode *MailKeyNode::either(const Pointer &left, const Pointer &right)
{
    // The empty key is "no condition", also in an alternative: it does not widen the other one.
    if (left->kind == Everything || left->kind == Nothing)
        return right.data();
    if (right->kind == Everything || right->kind == Nothing)
        return left.data();
    return combined(Or, left, right);
}

bool MailKeyNode::operator==(const MailKeyNode &other) const
{
    if (kind != other.kind || property != other.property || comparison != other.comparison
        || values != other.values || children.size() != other.children.size())
        return false;
    for (int i = 0; i < children.size(); ++i) {
        if (!(*children.at(i) == *other.children.at(i)))
            return false;
    }
    return true;
}
