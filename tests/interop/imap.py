#!/usr/bin/env python3
# SPDX-License-Identifier: LGPL-2.1-or-later
"""Another client of the same mailbox: lists all of it as JSON, or changes it.

Reads one JSON object from standard input: host, port, user, password and a list of steps. Each step is a list,
the name of a function below and its arguments. Messages are named by their subject, folders by their path as
people write it. Prints a JSON list, one result a step.
"""
import base64
import email
import email.policy
import email.utils
import hashlib
import imaplib
import json
import re
import sys
import time


def to_imap(path):
    """IMAP's own form of UTF-7, quoted."""
    def shifted(match):
        code = match.group().encode("utf-16-be")
        return "&" + email.base64mime.body_encode(code, eol="").rstrip("=").replace("/", ",") + "-"
    coded = re.sub(r"[^ -~]+", shifted, path.replace("&", "&-"))
    return '"' + coded.replace("\\", "\\\\").replace('"', '\\"') + '"'


def from_imap(name):
    def shifted(match):
        code = match.group(1)
        if not code:
            return "&"
        code += "=" * (-len(code) % 4)
        return email.base64mime.decode(code.replace(",", "/")).decode("utf-16-be")
    return re.sub(r"&([^-]*)-", shifted, name)


def addresses(message, field):
    return [[name, address] for name, address in email.utils.getaddresses(
        [str(value) for value in message.get_all(field, [])])]


def raw_payload(part):
    """The octets of a part as they travel."""
    return part.as_bytes(policy=email.policy.SMTP).split(b"\r\n\r\n", 1)[-1]


def described(part, path):
    """A leaf part, or a message within the message."""
    if part.get_content_maintype() == "message" and part.get_content_subtype() == "rfc822":
        # The other server hands out attached messages with bare line feeds.
        data = raw_payload(part).replace(b"\r\n", b"\n")
    else:
        data = part.get_payload(decode=True) or b""
    name = part.get_filename()
    return {"path": path, "type": part.get_content_type(), "name": name or "",
            "disposition": part.get_content_disposition() or "", "contentId": part.get("Content-ID", ""),
            "size": len(data), "encodedSize": len(raw_payload(part)), "sha256": hashlib.sha256(data).hexdigest()}


def leaves(part, path):
    if part.is_multipart() and part.get_content_maintype() == "multipart":
        for number, inner in enumerate(part.get_payload(), 1):
            yield from leaves(inner, path + [number])
    else:
        yield part, ".".join(str(number) for number in path or [1])


def text_of(part):
    charset = part.get_content_charset() or "us-ascii"
    return (part.get_payload(decode=True) or b"").decode(charset, "replace")


def listed(folder, uid, flags, data):
    message = email.message_from_bytes(data, policy=email.policy.default)
    texts = {"text/plain": None, "text/html": None}
    parts = []
    for part, path in leaves(message, []):
        kind = part.get_content_type()
        if kind in texts and texts[kind] is None and part.get_content_disposition() != "attachment":
            texts[kind] = text_of(part)
        else:
            parts.append(described(part, path))
    date = message["Date"]
    return {"folder": folder, "uid": uid, "read": b"\\Seen" in flags, "subject": str(message["Subject"] or ""),
            "from": addresses(message, "From"), "to": addresses(message, "To"), "cc": addresses(message, "Cc"),
            "date": int(date.datetime.timestamp()) if date else 0,
            "text": texts["text/plain"], "html": texts["text/html"], "parts": parts}


class Mailbox:
    def __init__(self, host, port, user, password):
        self.imap = imaplib.IMAP4(host, port)
        self.imap.login(user, password)
        # The other server reads this mailbox's counters of changes, which a client has to ask for once.
        self.imap.enable("CONDSTORE")

    def done(self, answer):
        if answer[0] != "OK":
            raise RuntimeError(str(answer))
        return answer[1]

    def folders(self):
        names = []
        for line in self.done(self.imap.list()):
            if isinstance(line, tuple):
                name = line[1]
            else:
                name = re.match(rb'\([^)]*\) "[^"]*" (.*)$', line).group(1)
                if name.startswith(b'"'):
                    name = re.sub(rb"\\(.)", rb"\1", name[1:-1])
            names.append(from_imap(name.decode("ascii")))
        return sorted(names)

    def select(self, folder, readonly=False):
        self.done(self.imap.select(to_imap(folder), readonly))

    def uid_of(self, folder, subject):
        self.select(folder)
        for uid, _, data in self.fetched("(UID FLAGS BODY.PEEK[HEADER])"):
            message = email.message_from_bytes(data, policy=email.policy.default)
            if str(message["Subject"] or "") == subject:
                return str(uid)
        raise RuntimeError("no message %r in %r" % (subject, folder))

    def fetched(self, what):
        for item in self.done(self.imap.fetch("1:*", what)):
            if isinstance(item, tuple):
                head, data = item
                yield (int(re.search(rb"UID (\d+)", head).group(1)),
                       re.search(rb"FLAGS \(([^)]*)\)", head).group(1), data)

    def messages(self):
        found = []
        for folder in self.folders():
            self.imap.select(to_imap(folder), True)
            if self.imap.untagged_responses.get("EXISTS", [b"0"])[-1] == b"0":
                continue
            # What is only marked as deleted is gone for the clients of the other protocol.
            found += [listed(folder, uid, flags, data) for uid, flags, data in self.fetched("(UID FLAGS BODY.PEEK[])")
                      if b"\\Deleted" not in flags]
        return found

    def source(self, folder, subject):
        uid = self.uid_of(folder, subject)
        data = self.done(self.imap.uid("FETCH", uid, "(BODY.PEEK[])"))[0][1]
        return [base64.b64encode(data).decode("ascii")]

    def append(self, folder, text, *flags):
        data = text.replace("\r\n", "\n").replace("\n", "\r\n").encode("utf-8")
        self.done(self.imap.append(to_imap(folder), "(%s)" % " ".join(flags),
                                   imaplib.Time2Internaldate(time.time()), data))

    def flag(self, folder, subject, operation, flag):
        self.done(self.imap.uid("STORE", self.uid_of(folder, subject), operation + "FLAGS.SILENT", "(%s)" % flag))

    def delete(self, folder, subject):
        self.flag(folder, subject, "+", r"\Deleted")
        self.done(self.imap.expunge())

    def move(self, folder, subject, target):
        self.done(self.imap.uid("MOVE", self.uid_of(folder, subject), to_imap(target)))

    def create(self, folder):
        self.done(self.imap.create(to_imap(folder)))
        self.done(self.imap.subscribe(to_imap(folder)))

    def rename(self, folder, target):
        self.done(self.imap.rename(to_imap(folder), to_imap(target)))
        self.imap.unsubscribe(to_imap(folder))
        self.done(self.imap.subscribe(to_imap(target)))

    def remove(self, folder):
        self.imap.unsubscribe(to_imap(folder))
        self.done(self.imap.delete(to_imap(folder)))


def main():
    order = json.load(sys.stdin)
    mailbox = Mailbox(order["host"], order["port"], order["user"], order["password"])
    results = [getattr(mailbox, step[0])(*step[1:]) for step in order["steps"]]
    mailbox.imap.logout()
    json.dump(results, sys.stdout)


if __name__ == "__main__":
    main()
