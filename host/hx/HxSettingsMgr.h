#pragma once

#include "hx/HxPreferences.h"

#include <QObject>
#include <QRect>
#include <QString>
#include <QStringList>

#include <map>
#include <string>

/// Keeps the preferences, the window geometries and what else a session leaves to the next, and stores them
/// between sessions.
///
/// There are three stores: the user's own, a named file, and memory, which is lost. What the memory shows is
/// always complete; a store is read when it is chosen and written by setPreferences with true, and by write.
class HxSettingsMgr : public QObject
{
    Q_OBJECT

public:
    static HxSettingsMgr* getInstance();

    const HxPreferences& getPreferences() const { return preferences; }

    /// notify true: keeps the record, writes the store and emits preferencesChanged. false: keeps it
    /// silently, to be written at the next write; for callers in their destructors, where a listener may be
    /// half gone.
    void setPreferences(const HxPreferences& now, bool notify);

    /// Threads that a parallel loop may take, at least 1.
    int numThreads() const;

    /// The rectangle stored under a key, an invalid one for an unknown key.
    QRect getGeometry(const char* key) const;
    void setGeometry(const char* key, const QRect& rect);

    /// Texts stored under a key, none for an unknown key; recently used files, say.
    QStringList getTexts(const char* key) const;
    void setTexts(const char* key, const QStringList& texts);

    /// Writes what has changed since the last write. Returns false, with a console message, when the store
    /// cannot be written. The memory store has nothing to write.
    bool write();

    /// Starts from defaults; nothing is read or written from now on.
    static void useMemoryStore();

    /// Reads this file, if it exists, and writes it from now on. A value that cannot be used is reported on
    /// the console and replaced by the default. A file that holds something else than preferences is left
    /// alone: false, with a console message, and the store is memory.
    static bool useFile(const char* path);

    /// Like useFile, with the file of this user's settings.
    static bool useUserStore();

signals:
    void preferencesChanged(const HxPreferences& old, const HxPreferences& now);

private:
    HxSettingsMgr() = default;

    bool read();
    bool readStore();

    HxPreferences preferences;
    std::map<std::string, QRect> geometries;
    std::map<std::string, QStringList> textLists;
    QString storePath; // empty: memory only
    bool changed = false;
};
