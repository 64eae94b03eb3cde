#pragma once
// The application profile: persisted settings addressed as a section and a
// value name ("CColRedCmd" / "m_Dither"). The model reads and writes its
// settings only through this interface; the window front end stores them
// in the user's settings file, tests and tools keep them in memory.

#include <map>
#include <string>
#include <utility>

class CProfile {
  public:
    virtual ~CProfile() = default;

    virtual int GetInt(const std::string& section, const std::string& entry,
                       int fallback) const = 0;
    virtual void WriteInt(const std::string& section, const std::string& entry, int value) = 0;
    virtual std::string GetString(const std::string& section, const std::string& entry,
                                  const std::string& fallback) const = 0;
    virtual void WriteString(const std::string& section, const std::string& entry,
                             const std::string& value) = 0;
};

// Settings held in memory for the life of the object. Integers and texts
// share one store, as in a settings file: an integer read of a text that
// is not a number gives the fallback.
class CMemoryProfile : public CProfile {
  public:
    int GetInt(const std::string& section, const std::string& entry, int fallback) const override;
    void WriteInt(const std::string& section, const std::string& entry, int value) override;
    std::string GetString(const std::string& section, const std::string& entry,
                          const std::string& fallback) const override;
    void WriteString(const std::string& section, const std::string& entry,
                     const std::string& value) override;

    bool Contains(const std::string& section, const std::string& entry) const;
    void Clear() { m_Values.clear(); }

  private:
    std::map<std::pair<std::string, std::string>, std::string> m_Values;
};
