/** Digests and task keys, narrow strings, file names. */
#include "taskfixture.h"

#include "down/version.h"
#include "md5/cmd5.h"
#include "strutil/narrowtext.h"
#include "strutil/strutil.h"
#include "sysutility/sysutility.h"

#include <QCryptographicHash>

namespace {

QByteArray digest(QByteArray message, int piece)
{
    CMD5 md5;
    CMD5::_MD5_CTX context;
    md5.MD5Init(&context);
    auto *input = reinterpret_cast<unsigned char *>(message.data());
    for (qsizetype at = 0; at < message.size(); at += piece)
        md5.MD5Update(&context, input + at,
                      static_cast<std::uint32_t>(qMin<qsizetype>(piece, message.size() - at)));
    QByteArray result(16, '\0');
    md5.MD5Final(reinterpret_cast<unsigned char *>(result.data()), &context);
    const QByteArray rest(reinterpret_cast<const char *>(&context), sizeof context);
    return rest == QByteArray(sizeof context, '\0') ? result.toHex() : "context not cleared";
}

} // namespace

class UtilitiesTest : public QObject
{
    Q_OBJECT

private slots:
    void md5()
    {
        char out[33];
        QCOMPARE(CMD5().MD5("", out), 0);
        QCOMPARE(QByteArray(out), QByteArray("d41d8cd98f00b204e9800998ecf8427e"));
        CMD5().MD5("abc", out);
        QCOMPARE(QByteArray(out), QByteArray("900150983cd24fb0d6963f7d28e17f72"));
        QByteArray message;
        for (int length = 0; length <= 200; ++length) {
            const auto hash = QCryptographicHash::hash(message, QCryptographicHash::Md5);
            for (int piece : {1, 7, 63, 64, 65, 500})
                QCOMPARE(digest(message, piece), hash.toHex());
            message.append(static_cast<char>(length * 37));
        }
        CMD5::_MD5_CTX context;
        CMD5().MD5Init(&context);
        context.count[0] = 0xFFFFFE00U;
        CMD5().MD5Update(&context, reinterpret_cast<unsigned char *>(message.data()), 64);
        QCOMPARE(context.count[0], 0U);
        QCOMPARE(context.count[1], 1U);
    }

    void taskKeys()
    {
        QCOMPARE(CDown::GetURLToMD5(u"abc"_s), u"900150983CD24FB0D6963F7D28E17F72"_s);
        QCOMPARE(CDown::GetURLToMD5(QString()), QString());
        QVERIFY(CDown::GetURLToMD5(u"abC"_s) != CDown::GetURLToMD5(u"abc"_s));
        QVERIFY(CDown::GetURLToMD5(u"abc "_s) != CDown::GetURLToMD5(u"abc"_s));
    }

    void texts_data()
    {
        addRows({"function", "text", "argument", "other", "expected"},
                {{"next digit", "add one", "a9", "", "", "aA"},
                 {"to small letters", "add one", "aZ", "", "", "aa"},
                 {"carry", "add one", "az", "", "", "b0"},
                 {"carry twice", "add one", "0zz", "", "", "100"},
                 {"9z", "add one", "9z", "", "", "A0"},
                 {"no digit", "add one", "-", "", "", "."},
                 {"no successor", "add one", "zz", "", "", "zz"},
                 {"empty counter", "add one", "", "", "", ""},
                 {"both ends", "trim", " \t my title\v \r\n", "", "", "my title\v"},
                 {"all blank", "trim", " \t\r\n", "", "", ""},
                 {"nothing", "split", "", ",", "", ""},
                 {"edges", "split", ",,a,,b,", ",", "", "a;b;"},
                 {"lines", "split", "a\r\nb\n\nc", "\r\n", "", "a;b;c;"},
                 {"no set", "split", "a b", "", "", "a b;"},
                 {"first key", "content", "xa=1a=2", "a=", "", "1a=2"},
                 {"no key", "content", "title", "none=", "", ""},
                 {"not again", "replace", "aaa", "a", "aa", "aaaaaa"},
                 {"resumes behind", "replace", "aabb", "ab", "", "ab"},
                 {"empty search", "replace", "keep", "", "y", "keep"},
                 {"clean", "file name", "My .Clip\x01\xc3\xa9", "", "", "My .Clip\x01\xc3\xa9"},
                 {"forbidden", "file name", "a\\b/c:d*e?f\"g<h>i|j??k", "", "", "abcdefghijk"},
                 {"ends", "file name", "\t\r\n a\tb\n ", "", "", "a\tb"},
                 {"only forbidden", "file name", "???", "", "", ""},
                 {"no second trim", "file name", "a ?", "", "", "a "},
                 {"blank", "file name", " \t\r\n", "", "", ""}});
    }
    void texts()
    {
        QFETCH(QString, function);
        QFETCH(QString, text);
        QFETCH(QString, argument);
        QFETCH(QString, other);
        std::string result = text.toStdString();
        if (function == u"add one")
            CMD5().StringAddOne(result.data());
        else if (function == u"trim")
            result = strutil::trim(result);
        else if (function == u"content")
            result = strutil::getContent(result, argument.toStdString());
        else if (function == u"replace")
            strutil::string_replace(result, argument.toStdString(), other.toStdString());
        else if (function == u"file name")
            result = sysutility::MakeFileName(result);
        else {
            const auto tokens = strutil::split(std::exchange(result, {}), argument.toStdString());
            for (const std::string &token : tokens)
                result += token + ';';
        }
        QTEST(QString::fromStdString(result), "expected");
    }

    void tokenizer()
    {
        strutil::Tokenizer tokens("  x y,z ");
        QVERIFY(tokens.nextToken() && tokens.getToken() == "x");
        QVERIFY(tokens.nextToken(" ,") && tokens.getToken() == "y");
        QVERIFY(tokens.nextToken() && tokens.getToken() == ",z");
        QVERIFY(!tokens.nextToken() && tokens.getToken() == ",z");
        tokens.reset();
        QVERIFY(tokens.getToken() == ",z" && tokens.nextToken() && tokens.getToken() == "x");
    }

    void nulIsACharacter()
    {
        const std::string text("\0a\0?,\0", 6);
        QVERIFY(strutil::trim(text) == text);
        QVERIFY(strutil::split(text, ",").front() == text.substr(0, 4));
        QVERIFY(sysutility::MakeFileName(text) == std::string("\0a\0,\0", 5));
    }

    void version()
    {
        const int major = VIDEODOWN_VERSION_MAJOR;
        const int minor = VIDEODOWN_VERSION_MINOR;
        const int patch = VIDEODOWN_VERSION_PATCH;
        QCOMPARE(u"%1.%2.%3"_s.arg(major).arg(minor).arg(patch), VIDEODOWN_VERSION_STRING ""_L1);
        QVERIFY(VIDEODOWN_VERSION_IS_AT_LEAST(major, minor, patch));
        QVERIFY(VIDEODOWN_VERSION_IS_AT_LEAST(major, minor - 1, patch + 1));
        QVERIFY(VIDEODOWN_VERSION_IS_AT_LEAST(major - 1, minor + 1, patch + 1));
        QVERIFY(!VIDEODOWN_VERSION_IS_AT_LEAST(major, minor, patch + 1));
        QVERIFY(!VIDEODOWN_VERSION_IS_AT_LEAST(major, minor + 1, patch));
        QVERIFY(!VIDEODOWN_VERSION_IS_AT_LEAST(major + 1, minor - 1, patch));
    }

    void narrowTexts()
    {
        std::string all;
        for (int byte = 0; byte < 256; ++byte)
            all += static_cast<char>(byte);
        QCOMPARE(narrowtext::fromNarrow(all).size(), 256);
        QCOMPARE(narrowtext::toNarrow(narrowtext::fromNarrow(all)), all);
        QCOMPARE(narrowtext::toNarrow(u"\u00e9\u4e2d"_s), std::string("\xe9?"));
        narrowtext::setCodec(narrowtext::Codec::Utf8);
        const std::string text = narrowtext::toNarrow(u"\u00e9\u4e2d"_s);
        const QString invalid = narrowtext::fromNarrow(std::string("a\xff\0b", 4));
        const std::string lone = narrowtext::toNarrow(QString(QChar(0xD800)));
        narrowtext::setCodec(narrowtext::Codec::Latin1);
        QCOMPARE(text, std::string("\xc3\xa9\xe4\xb8\xad"));
        QCOMPARE(invalid, u"a\ufffd\0b"_s);
        QCOMPARE(lone, std::string("?"));
    }
};

QTEST_GUILESS_MAIN(UtilitiesTest)
#include "tst_utilities.moc"
