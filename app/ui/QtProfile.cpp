#include "app/ui/QtProfile.h"

#include <QSettings>

namespace {

QString keyOf(const std::string& section, const std::string& entry) {
    return QString::fromStdString(section) + '/' + QString::fromStdString(entry);
}

} // namespace

CQtProfile::CQtProfile()
    : m_Settings(std::make_unique<QSettings>(QSettings::IniFormat, QSettings::UserScope,
                                             "Nadir Tools", "Zy")) {}

CQtProfile::CQtProfile(const QString& path)
    : m_Settings(std::make_unique<QSettings>(path, QSettings::IniFormat)) {}

CQtProfile::~CQtProfile() = default;

int CQtProfile::GetInt(const std::string& section, const std::string& entry, int fallback) const {
    QVariant value = m_Settings->value(keyOf(section, entry));
    if (!value.isValid()) return fallback;
    bool ok = false;
    // Colours are 0xFFRRGGBB words: a value written by hand as an unsigned
    // number comes back as the same 32 bits.
    qlonglong number = value.toString().trimmed().toLongLong(&ok, 0);
    if (!ok) return fallback;
    return static_cast<int>(static_cast<unsigned int>(number));
}

void CQtProfile::WriteInt(const std::string& section, const std::string& entry, int value) {
    m_Settings->setValue(keyOf(section, entry), value);
}

std::string CQtProfile::GetString(const std::string& section, const std::string& entry,
                                  const std::string& fallback) const {
    QVariant value = m_Settings->value(keyOf(section, entry));
    return value.isValid() ? value.toString().toStdString() : fallback;
}

void CQtProfile::WriteString(const std::string& section, const std::string& entry,
                             const std::string& value) {
    m_Settings->setValue(keyOf(section, entry), QString::fromStdString(value));
}

void CQtProfile::Flush() {
    m_Settings->sync();
}
