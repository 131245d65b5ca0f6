#include "FileName.h"

#include <QTest>
#include <QUrl>

using namespace Quillon;

// File names are bytes: one that is not UTF-8 comes back byte for byte from text and from a URL.
class FileNameTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void bytesComeBackExactly_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("utf8");
        QTest::newRow("ASCII") << QByteArray("/home/ann/notes.txt") << true;
        QTest::newRow("UTF-8 with a 4-byte sequence") << QByteArray("/Gr\xc3\xbc\xc3\x9f\xc3\xa9 \xf0\x9f\x8e\xb5") << true;
        QTest::newRow("Latin-1") << QByteArray("/home/ann/r\xe9sum\xe9.txt") << false;
        QTest::newRow("a surrogate written as UTF-8") << QByteArray("/a\xed\xb2\x80z") << false;
        QTest::newRow("overlong slash") << QByteArray("/a\xc0\xafz") << false;
        QTest::newRow("cut-off sequence at the end") << QByteArray("/a\xe2\x82") << false;
    }
    void bytesComeBackExactly()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, utf8);
        const QString text = FileName::decode(bytes);
        QCOMPARE(FileName::encode(text), bytes);
        if (utf8)
            QCOMPARE(text, QString::fromUtf8(bytes));
        // Shown as Qt would show it.
        QCOMPARE(FileName::display(text), QString::fromUtf8(bytes));
        QUrl url;
        url.setPath(QString::fromLatin1(bytes.toPercentEncoding("/")), QUrl::TolerantMode);
        url.setScheme(QStringLiteral("file"));
        QCOMPARE(FileName::fromUrl(url), text);
    }
};

QTEST_GUILESS_MAIN(FileNameTest)
#include "file_name_test.moc"
