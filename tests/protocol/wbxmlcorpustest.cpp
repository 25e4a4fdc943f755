// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/wbxml/wbxmlencoder.h"
#include "protocol/wbxml/wbxmllogger.h"
#include "protocol/wbxml/wbxmlparserbase.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "protocol/wbxml/wbxmlvalidator.h"
#include "support/buildpaths.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <QDirIterator>
#include <QtTest>

#include <random>

namespace {

/** Counts what a document delivers. */
class Counter : public WbxmlParserBase
{
public:
    void onStartElement(uint codePage, uint token) override
    {
        WbxmlParserBase::onStartElement(codePage, token);
        ++elements;
        deepest = qMax(deepest, mElementStack.size());
    }

    void onContent(uint, uint, const QString &, const QByteArray &raw) override { content += raw.size(); }

    int elements = 0;
    int deepest = 0;
    qint64 content = 0;
};

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList corpusFiles()
{
    QStringList files;
    QDirIterator folder(BuildPaths::source(QStringLiteral("tests/fuzz/corpus")),
        { QStringLiteral("*.wbxml") }, QDir::Files, QDirIterator::Subdirectories);
    while (folder.hasNext())
        files.append(folder.next());
    files.sort();
    return files;
}

/** Every way through the codec; what comes out has bounds. */
void exercise(const QByteArray &bytes)
{
    const bool accepted = !bytes.isEmpty() && WbxmlValidator(bytes).check();
    Counter parser;
    parser.parse(bytes);
    QCOMPARE(parser.ready(), accepted || bytes.isEmpty()); // what the check lets pass, the library reads
    QVERIFY(accepted || parser.elements == 0);
    QVERIFY(parser.deepest <= WbxmlValidator::MaxDepth);
    QVERIFY(parser.content <= qint64(bytes.size()) * (WbxmlValidator::MaxExpansion + 1));

    WbxmlEncoder::toXml(bytes);
    QString text;
    {
        WbxmlLogger logger { QDebug(&text) };
        logger.parse(bytes);
    }
    QCOMPARE(text.isEmpty(), !accepted);
}

class Mutator
{
public:
    explicit Mutator(const QStringList &files)
    {
        for (const QString &file : files) {
            const QByteArray bytes = readFile(file);
            if (!bytes.isEmpty() && bytes.size() < 4096)
                mSeeds.append(bytes);
        }
    }

    QByteArray next()
    {
        QByteArray bytes = mSeeds.at(below(mSeeds.size()));
        for (int changes = 1 + below(4); changes > 0 && !bytes.isEmpty(); --changes)
            change(bytes);
        return bytes;
    }

private:
    int below(int limit) { return static_cast<int>(mRandom() % static_cast<uint>(limit)); }

    void change(QByteArray &bytes)
    {
        static constexpr char interesting[] =
            "\x00\x01\x02\x03\x04\x43\x44\x45\x7F\x80\x83\x84\xC0\xC3\xC4\xFF";
        const int at = below(bytes.size());
        switch (below(6)) {
        case 0:
            bytes[at] = static_cast<char>(mRandom());
            break;
        case 1:
            bytes[at] = interesting[below(sizeof interesting - 1)];
            break;
        case 2:
            bytes.insert(at, interesting[below(sizeof interesting - 1)]);
            break;
        case 3:
            bytes.remove(at, 1 + below(8));
            break;
        case 4:
            bytes.truncate(at);
            break;
        default:
            bytes.insert(at, bytes.mid(below(bytes.size()), 1 + below(32)));
            break;
        }
    }

    QList<QByteArray> mSeeds;
    std::mt19937 mRandom { 2024 }; // the same documents in every run
};

} // namespace

class WbxmlCorpusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyFileDoesWhatItsNameSays_data()
    {
        QTest::addColumn<QString>("path");
        const QStringList files = corpusFiles();
        QVERIFY(files.size() > 40);
        for (const QString &file : files)
            QTest::newRow(qPrintable(QFileInfo(file).completeBaseName())) << file;
    }

    void everyFileDoesWhatItsNameSays()
    {
        QFETCH(QString, path);
        LogCollector log;
        const QByteArray bytes = readFile(path);
        QVERIFY(!bytes.isEmpty());
        Counter parser;
        parser.parse(bytes);
        QCOMPARE(parser.ready(), QFileInfo(path).fileName().startsWith(QStringLiteral("good-")));
        exercise(bytes);
    }

    void mutatedDocumentsNeitherCrashNorGrow()
    {
        constexpr int documents = 20000;
        constexpr int batch = 1000; // the collected log lines are not let grow
        Mutator mutator(corpusFiles());
        int accepted = 0;
        for (int done = 0; done < documents; done += batch) {
            LogCollector log;
            for (int i = 0; i < batch; ++i) {
                const QByteArray bytes = mutator.next();
                accepted += WbxmlValidator(bytes).check() ? 1 : 0;
                exercise(bytes);
                if (QTest::currentTestFailed())
                    return;
            }
        }
        qInfo("%d of %d documents were well-formed", accepted, documents);
        QVERIFY(accepted > documents / 20 && accepted < documents / 2); // both sides are exercised
    }

    void everyCutOfEveryFileIsHandled()
    {
        const QStringList files = corpusFiles();
        for (const QString &file : files) {
            const QByteArray bytes = readFile(file);
            LogCollector log;
            for (int length = 0; length < qMin(bytes.size(), 600); ++length) {
                exercise(bytes.left(length));
                if (QTest::currentTestFailed())
                    return;
            }
        }
    }
};

FENNEL_REGISTER_TEST(WbxmlCorpusTest)
#include "wbxmlcorpustest.moc"
