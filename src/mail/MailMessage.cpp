#include "MailMessage.h"

#undef signals
#include <gmime/gmime.h>

namespace Quillon {

QByteArray composeMailMessage(const QString &address, const QString &subject, const QString &body)
{
    static const bool initialised = [] {
        g_mime_init();
        return true;
    }();
    Q_UNUSED(initialised);

    const QByteArray addr = address.toUtf8();
    GMimeMessage *message = g_mime_message_new(TRUE);
    g_mime_message_add_mailbox(message, GMIME_ADDRESS_TYPE_FROM, nullptr, addr.constData());
    g_mime_message_add_mailbox(message, GMIME_ADDRESS_TYPE_TO, nullptr, addr.constData());
    g_mime_message_set_subject(message, subject.toUtf8().constData(), "utf-8");
    GDateTime *now = g_date_time_new_now_local();
    g_mime_message_set_date(message, now);
    g_date_time_unref(now);
    const qsizetype at = addr.lastIndexOf('@');
    char *id = g_mime_utils_generate_message_id(at >= 0 ? addr.mid(at + 1).constData() : "localhost");
    g_mime_message_set_message_id(message, id);
    g_free(id);

    // Not g_mime_text_part_set_text: it re-encodes text that fits in Latin-1 into Latin-1 while
    // the label says utf-8, and it stops at a NUL. The body goes in as the UTF-8 bytes it is.
    const QByteArray utf8 = body.toUtf8();
    GMimeTextPart *text = g_mime_text_part_new_with_subtype("plain");
    g_mime_text_part_set_charset(text, "utf-8");
    GMimeStream *stream = g_mime_stream_mem_new_with_buffer(utf8.constData(), size_t(utf8.size()));
    GMimeDataWrapper *content = g_mime_data_wrapper_new_with_stream(stream, GMIME_CONTENT_ENCODING_DEFAULT);
    g_mime_part_set_content(GMIME_PART(text), content);
    g_object_unref(content);
    g_object_unref(stream);
    g_mime_part_set_content_encoding(GMIME_PART(text), GMIME_CONTENT_ENCODING_BASE64);
    g_mime_message_set_mime_part(message, GMIME_OBJECT(text));
    g_object_unref(text);

    char *written = g_mime_object_to_string(GMIME_OBJECT(message), nullptr);
    QByteArray out(written);
    g_free(written);
    g_object_unref(message);
    return out;
}

} // namespace Quillon
