#include "site/faultoption.h"
#include "site/videosite.h"

#include <QByteArray>
#include <QHash>
#include <QTest>

#include <arpa/inet.h>
#include <array>
#include <sys/socket.h>
#include <unistd.h>

namespace {

struct Reply
{
    int status = 0;
    QHash<QByteArray, QByteArray> headers;
    QByteArray body;
};

QByteArray exchange(int port, const QByteArray &request)
{
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    QByteArray reply;
    if (::connect(socket, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0 &&
        ::send(socket, request.constData(), static_cast<std::size_t>(request.size()), 0) > 0) {
        std::array<char, 4096> bytes{};
        for (ssize_t size = 0; (size = ::recv(socket, bytes.data(), bytes.size(), 0)) > 0;)
            reply.append(bytes.data(), size);
    }
    ::close(socket);
    return reply;
}

Reply get(const VideoSite &site, const QByteArray &target, const QByteArray &moreHeaders = {})
{
    const QByteArray raw =
        exchange(site.port(), "GET " + target + " HTTP/1.1\r\nHost: 127.0.0.1:" +
                                  QByteArray::number(site.port()) + "\r\nConnection: close\r\n" +
                                  moreHeaders + "\r\n");
    const qsizetype end = raw.indexOf("\r\n\r\n");
    QList<QByteArray> lines = raw.left(end).replace('\r', "").split('\n');
    Reply reply{lines.takeFirst().mid(9, 3).toInt(), {}, raw.mid(end + 4)};
    for (const QByteArray &line : std::as_const(lines))
        reply.headers.insert(line.left(line.indexOf(": ")), line.mid(line.indexOf(": ") + 2));
    return reply;
}

// As browsers read forms, written apart from the site's own encoding.
QHash<QByteArray, QByteArray> decodeForm(const QByteArray &form)
{
    QHash<QByteArray, QByteArray> fields;
    for (QByteArray field : form.split('&')) {
        field.replace('+', ' ');
        const qsizetype equals = field.indexOf('=');
        fields.insert(field.left(equals), QByteArray::fromPercentEncoding(field.mid(equals + 1)));
    }
    return fields;
}

QByteArray pathOf(const QByteArray &address, const VideoSite &site)
{
    const QByteArray base = QByteArray::fromStdString(site.baseAddress());
    return address.startsWith(base) ? address.mid(base.size()) : QByteArray("not on this site");
}

bool looksLikeVideo(const Reply &reply, int format)
{
    const bool flv = reply.headers.value("Content-Type") == "video/x-flv";
    return QByteArray::fromStdString(formatContentType(format)) ==
               reply.headers.value("Content-Type") &&
           reply.body.size() > 1000 &&
           (flv ? reply.body.startsWith("FLV\x01") : reply.body.mid(4, 4) == "ftyp");
}

const QByteArray smallStream = "/stream/small-7/34";

QByteArray smallBytes()
{
    return QByteArray::fromStdString(smallVideoBytes(7, 34, 4096));
}

} // namespace

class TestVideoSite : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_site = std::make_unique<VideoSite>();
        QVERIFY(m_site->start());
    }
    void cleanup() { m_site.reset(); }

    void everyVideoIsAsItsInfoSays_data()
    {
        QTest::addColumn<int>("index");
        for (int i = 0; i < static_cast<int>(siteCatalogue().size()); ++i) {
            const SiteVideo &video = siteCatalogue()[static_cast<std::size_t>(i)];
            if (video.failure.empty())
                QTest::newRow(video.id.c_str()) << i;
        }
    }

    void everyVideoIsAsItsInfoSays()
    {
        QFETCH(int, index);
        const SiteVideo &video = siteCatalogue()[static_cast<std::size_t>(index)];
        const QByteArray id = QByteArray::fromStdString(video.id);
        QCOMPARE(get(*m_site, "/watch?v=" + id).status, 200);
        const auto info = decodeForm(get(*m_site, "/get_video_info?video_id=" + id).body);
        QCOMPARE(info.value("status"), "ok");
        QCOMPARE(info.value("video_id"), id);
        QCOMPARE(info.value("title"), QByteArray::fromStdString(video.title));
        QCOMPARE(info.value("keywords"), QByteArray::fromStdString(video.keywords));
        const Reply thumbnail = get(*m_site, pathOf(info.value("thumbnail_url"), *m_site));
        QCOMPARE(thumbnail.headers.value("Content-Type"), "image/jpeg");
        QVERIFY(thumbnail.body.startsWith("\xFF\xD8\xFF"));

        const QList<QByteArray> streams = info.value("fmt_stream_map").split(',');
        const QList<QByteArray> sizes = info.value("fmt_list").split(',');
        QCOMPARE(streams.size(), static_cast<qsizetype>(video.formats.size()));
        QCOMPARE(sizes.size(), streams.size());
        for (qsizetype i = 0; i < streams.size(); ++i) {
            const int format = video.formats[static_cast<std::size_t>(i)];
            const QList<QByteArray> stream = streams[i].split('|');
            QCOMPARE(stream.size(), 2);
            QCOMPARE(stream[0].toInt(), format);
            QCOMPARE(sizes[i].split('/').first().toInt(), format);
            QVERIFY(looksLikeVideo(get(*m_site, pathOf(stream[1], *m_site)), format));
        }
    }

    void ranges_data()
    {
        QTest::addColumn<QByteArray>("range");
        QTest::addColumn<QByteArray>("ifRange");
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("contentRange");
        QTest::addColumn<int>("first");
        QTest::addColumn<int>("length");
        const auto row = [](const char *name, const char *range, const char *ifRange, int status,
                            const char *contentRange, int first, int length) {
            QTest::newRow(name) << QByteArray(range) << QByteArray(ifRange) << status
                                << QByteArray(contentRange) << first << length;
        };
        row("none", "", "", 200, "", 0, 4096);
        row("from the middle", "bytes=4000-", "", 206, "bytes 4000-4095/4096", 4000, 96);
        row("first byte", "bytes=0-0", "", 206, "bytes 0-0/4096", 0, 1);
        row("last bytes", "bytes=-6", "", 206, "bytes 4090-4095/4096", 4090, 6);
        row("more last bytes than there are", "bytes=-9999", "", 206, "bytes 0-4095/4096", 0, 4096);
        row("past the end", "bytes=4095-9999", "", 206, "bytes 4095-4095/4096", 4095, 1);
        row("at the end", "bytes=4096-", "", 416, "bytes */4096", 0, 0);
        row("several", "bytes=0-1,5-6", "", 200, "", 0, 4096);
        row("same tag", "bytes=4000-", "TAG", 206, "bytes 4000-4095/4096", 4000, 96);
        row("other tag", "bytes=4000-", "\"other\"", 200, "", 0, 4096);
        row("weak tag", "bytes=4000-", "W/TAG", 200, "", 0, 4096);
        row("same date", "bytes=4000-", "DATE", 206, "bytes 4000-4095/4096", 4000, 96);
        row("beyond with another tag", "bytes=9999-", "\"other\"", 200, "", 0, 4096);
    }

    void ranges()
    {
        QFETCH(QByteArray, range);
        QFETCH(QByteArray, ifRange);
        QFETCH(int, first);
        QFETCH(int, length);
        const Reply whole = get(*m_site, smallStream);
        ifRange.replace("TAG", whole.headers.value("ETag"));
        ifRange.replace("DATE", whole.headers.value("Last-Modified"));
        QByteArray headers;
        if (!range.isEmpty())
            headers += "Range: " + range + "\r\n";
        if (!ifRange.isEmpty())
            headers += "If-Range: " + ifRange + "\r\n";
        const Reply reply = get(*m_site, smallStream, headers);
        QTEST(reply.status, "status");
        QTEST(reply.headers.value("Content-Range", ""), "contentRange");
        QCOMPARE(reply.headers.value("Content-Length").toInt(), length);
        QCOMPARE(reply.body, smallBytes().mid(first, length));
        const SiteRequest recorded = m_site->requests().back();
        QCOMPARE(QByteArray::fromStdString(recorded.range), range);
        QCOMPARE(QByteArray::fromStdString(recorded.ifRange), ifRange);
    }

    void portIsNotShared()
    {
        VideoSite second;
        QVERIFY(!second.start(m_site->port()));
    }

    void unreadableFaults()
    {
        for (const char *text :
             {"first=x", "first=-1", "cut=99999999999999999999", "status=99", "status=600",
              "nothing", "nothing=1", "endless=1", "cut", "=", ",cut=1"})
            QVERIFY2(!readMisbehaviour(text), text);
        const auto fault = readMisbehaviour("prefix=/a=b,first=2,endless,retry-after=3,status=503");
        QVERIFY(fault && fault->endless && fault->firstRequests == 2U && fault->prefix == "/a=b");
        QVERIFY(fault->answer->status == 503 && fault->answer->headers.at("Retry-After") == "3");
    }

private: // NOLINT(readability-redundant-access-specifiers): slots end here
    std::unique_ptr<VideoSite> m_site;
};

QTEST_GUILESS_MAIN(TestVideoSite)
#include "tst_videosite.moc"
