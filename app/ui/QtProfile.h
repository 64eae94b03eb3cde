#pragma once
// The application profile kept in the user's settings file: QSettings with
// organisation "Nadir Tools" and application "Zy", each value under the key
// "Section/value" ("CImageView/m_CheckerSize").

#include "app/doc/Profile.h"

#include <QString>

#include <memory>

class QSettings;

class CQtProfile : public CProfile {
  public:
    // The user's own store.
    CQtProfile();
    // A store in the INI file at `path` (tests use a temporary folder).
    explicit CQtProfile(const QString& path);
    ~CQtProfile() override;

    int GetInt(const std::string& section, const std::string& entry, int fallback) const override;
    void WriteInt(const std::string& section, const std::string& entry, int value) override;
    std::string GetString(const std::string& section, const std::string& entry,
                          const std::string& fallback) const override;
    void WriteString(const std::string& section, const std::string& entry,
                     const std::string& value) override;

    // Writes pending changes to the file.
    void Flush();
    QSettings& Settings() { return *m_Settings; }

  private:
    std::unique_ptr<QSettings> m_Settings;
};
