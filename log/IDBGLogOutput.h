#pragma once

/// A place that log lines go to. It filters by its own level: a line is meant for it when the
/// line's level is less than or equal to GetLevel(). Any thread may call it; it serialises its own
/// writes and reports no failure. It may be created while the library is being loaded, so neither
/// construction nor destruction may load modules, start threads or wait without a bound.
class IDBGLogOutput {
public:
    virtual ~IDBGLogOutput() = default;

    /// Writes one line without its end. `nErrorCode` 0 means that there is none.
    virtual void Write(int nLevel, int nErrorCode, const char* pszMessage) = 0;
    virtual void Write(int nLevel, int nErrorCode, const wchar_t* pszMessage) = 0;

    virtual int GetLevel() = 0;

protected:
    IDBGLogOutput() = default;
    IDBGLogOutput(const IDBGLogOutput&) = default;
    IDBGLogOutput& operator=(const IDBGLogOutput&) = default;
};
