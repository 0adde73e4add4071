// platform/qt/recent_files.cpp - the list of recent files that the programs of a desktop share
//
// The list is $XDG_DATA_HOME/recently-used.xbel, in the form that freedesktop.org describes for desktop bookmarks.
// Every program adds to it, so what others have entered is copied, and a list that cannot be read is left as it is.
#include "platform/controls.h"

#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>
#include <QtCore/QStandardPaths>
#include <QtCore/QUrl>
#include <QtCore/QXmlStreamReader>
#include <QtCore/QXmlStreamWriter>

constexpr qint64 listRoom = 16 << 20; // bytes; desktops keep some hundred entries of less than a kilobyte
constexpr char bookmarkSpace[] = "http://www.freedesktop.org/standards/desktop-bookmarks";
constexpr char mimeSpace[] = "http://www.freedesktop.org/standards/shared-mime-info";
constexpr char owner[] = "http://freedesktop.org";
constexpr char ourName[] = "Kestrelbox";

// The entry that is made, and what has been found of it so far.
struct Entry
{
    QString address, mimeType, now;
    int count = 1;      // how often the program has opened the file
    bool found = false; // the list has an entry of the file
    bool inside = false;
    bool hasInfo = false, hasMetadata = false, hasApplications = false; // of the entry that the copy is in
};

static QString mimeTypeOf(const QString& path)
{
    static const struct
    {
        const char *extension, *type;
    } rows[] = {
        { "obj", "model/obj" },     { "3ds", "image/x-3ds" }, { "dxf", "image/vnd.dxf" }, { "ply", "model/x-ply" },
        { "off", "model/x-off" },   { "stl", "model/stl" },   { "pp2", "model/x-poser" }, { "hr2", "model/x-poser" },
        { "cr2", "model/x-poser" }, { "rkf", "model/x-rkf" },
    };
    QString extension = QFileInfo(path).suffix().toLower();
    for (const auto& row : rows)
    {
        if (extension == row.extension)
            return row.type;
    }
    return "application/octet-stream";
}

static void writeApplication(QXmlStreamWriter* out, const Entry& entry)
{
    out->writeEmptyElement(bookmarkSpace, "application");
    out->writeAttribute("name", ourName);
    out->writeAttribute("exec", "'kestrelbox %u'");
    out->writeAttribute("modified", entry.now);
    out->writeAttribute("count", QString::number(entry.count));
}

static void writeApplications(QXmlStreamWriter* out, const Entry& entry)
{
    out->writeStartElement(bookmarkSpace, "applications");
    writeApplication(out, entry);
    out->writeEndElement();
}

static void writeMetadata(QXmlStreamWriter* out, const Entry& entry)
{
    out->writeStartElement("metadata");
    out->writeAttribute("owner", owner);
    out->writeEmptyElement(mimeSpace, "mime-type");
    out->writeAttribute("type", entry.mimeType);
    writeApplications(out, entry);
    out->writeEndElement();
}

static void writeInfo(QXmlStreamWriter* out, const Entry& entry)
{
    out->writeStartElement("info");
    writeMetadata(out, entry);
    out->writeEndElement();
}

static void writeBookmark(QXmlStreamWriter* out, const Entry& entry)
{
    out->writeStartElement("bookmark");
    out->writeAttribute("href", entry.address);
    for (const char* time : { "added", "modified", "visited" })
        out->writeAttribute(time, entry.now);
    writeInfo(out, entry);
    out->writeEndElement();
}

// Copies the start of the file's own entry with new times.
static void copyBookmarkStart(const QXmlStreamReader& in, QXmlStreamWriter* out, const Entry& entry)
{
    out->writeStartElement("bookmark");
    for (const QXmlStreamAttribute& attribute : in.attributes())
    {
        if (attribute.name() != u"modified" && attribute.name() != u"visited")
            out->writeAttribute(attribute);
    }
    for (const char* time : { "modified", "visited" })
        out->writeAttribute(time, entry.now);
}

static bool isOurApplication(const QXmlStreamReader& in)
{
    return in.name() == u"application" && in.attributes().value("name") == QLatin1String(ourName);
}

static void copyStart(QXmlStreamReader* in, QXmlStreamWriter* out, Entry* entry)
{
    if (in->name() == u"bookmark" && in->attributes().value("href") == entry->address && !entry->found)
    {
        entry->found = entry->inside = true;
        copyBookmarkStart(*in, out, *entry);
        return;
    }
    if (entry->inside && isOurApplication(*in)) // written again when the others are copied
    {
        entry->count = in->attributes().value("count").toInt() + 1;
        in->skipCurrentElement();
        return;
    }
    entry->hasInfo |= in->name() == u"info";
    entry->hasMetadata |= in->name() == u"metadata" && in->attributes().value("owner") == QLatin1String(owner);
    entry->hasApplications |= in->name() == u"applications";
    out->writeCurrentToken(*in);
}

// Writes what the file's own entry lacks before the end of the element that has to have it.
static void completeBefore(const QXmlStreamReader& in, QXmlStreamWriter* out, Entry* entry)
{
    if (entry->inside && in.name() == u"applications")
        writeApplication(out, *entry);
    else if (entry->inside && in.name() == u"metadata" && entry->hasMetadata && !entry->hasApplications)
        writeApplications(out, *entry);
    else if (entry->inside && in.name() == u"info" && !entry->hasMetadata)
        writeMetadata(out, *entry);
    else if (entry->inside && in.name() == u"bookmark" && !entry->hasInfo)
        writeInfo(out, *entry);
    else if (in.name() == u"xbel" && !entry->found)
        writeBookmark(out, *entry);
    if (in.name() == u"bookmark")
        entry->inside = entry->hasInfo = entry->hasMetadata = entry->hasApplications = false;
}

// Copies the list with the entry in it. Returns false for what is no list.
static bool copyList(QXmlStreamReader* in, QXmlStreamWriter* out, Entry* entry)
{
    if (!in->readNextStartElement() || in->name() != u"xbel")
        return false;
    out->writeStartDocument();
    out->writeNamespace(bookmarkSpace, "bookmark");
    out->writeNamespace(mimeSpace, "mime");
    for (const QXmlStreamNamespaceDeclaration& other : in->namespaceDeclarations())
    {
        if (other.namespaceUri() != QLatin1String(bookmarkSpace) && other.namespaceUri() != QLatin1String(mimeSpace))
            out->writeNamespace(other.namespaceUri().toString(), other.prefix().toString());
    }
    out->writeStartElement("xbel");
    out->writeAttributes(in->attributes());
    while (!in->atEnd() && in->readNext() != QXmlStreamReader::EndDocument)
    {
        if (in->isStartElement())
            copyStart(in, out, entry);
        else if (in->isEndElement())
        {
            completeBefore(*in, out, entry);
            out->writeEndElement();
        }
        else if (in->tokenType() != QXmlStreamReader::Invalid)
            out->writeCurrentToken(*in);
    }
    out->writeEndDocument();
    return !in->hasError();
}

static QByteArray emptyList()
{
    return "<xbel version=\"1.0\"></xbel>";
}

void rememberFile(const char* path)
{
    QString name = QFile::decodeName(path);
    QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    QFile list(folder + "/recently-used.xbel");
    bool isNew = !list.exists();
    if (!isNew && (!list.open(QIODevice::ReadOnly) || list.size() > listRoom))
        return;
    QByteArray before = isNew ? QByteArray() : list.readAll();
    QXmlStreamReader in(before.isEmpty() ? emptyList() : before);
    QByteArray after;
    QXmlStreamWriter out(&after);
    Entry entry;
    entry.address = QString::fromLatin1(QUrl::fromLocalFile(name).toEncoded());
    entry.mimeType = mimeTypeOf(name);
    entry.now = QDateTime::currentDateTimeUtc().toString("yyyy-MM-ddTHH:mm:ssZ");
    if (!copyList(&in, &out, &entry) || !QDir().mkpath(folder))
        return;
    QSaveFile file(list.fileName());
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) // with a buffer, a full disk is not noticed
        return;
    if (isNew)
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner); // nobody else's business
    if (file.write(after) == after.size())
        file.commit();
}
