#pragma once

// ODBC's handles, owned. Internal to this folder, as is every ODBC header.

#ifdef _WIN32
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#endif
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

#include "platform/ado/connection.h"

namespace vicenter::ado {

template <SQLSMALLINT kType>
class OdbcHandle {
  public:
    OdbcHandle() = default;
    explicit OdbcHandle(SQLHANDLE parent) {
        if (!SQL_SUCCEEDED(SQLAllocHandle(kType, parent, &handle_))) handle_ = SQL_NULL_HANDLE;
    }
    OdbcHandle(OdbcHandle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    OdbcHandle& operator=(OdbcHandle&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~OdbcHandle() {
        if (handle_ != SQL_NULL_HANDLE) SQLFreeHandle(kType, handle_);
    }
    SQLHANDLE Get() const { return handle_; }
    explicit operator bool() const { return handle_ != SQL_NULL_HANDLE; }

  private:
    SQLHANDLE handle_ = SQL_NULL_HANDLE;
};

using OdbcLine = OdbcHandle<SQL_HANDLE_DBC>;
using OdbcStatement = OdbcHandle<SQL_HANDLE_STMT>;

// The statement that runs, which any thread may take back for as long as it does.
class OdbcRunning {
  public:
    class Scope {
      public:
        Scope(OdbcRunning& running, SQLHSTMT statement) : running_(running) { running_.Set(statement); }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;
        ~Scope() { running_.Set(SQL_NULL_HSTMT); }

      private:
        OdbcRunning& running_;
    };
    // Does nothing while no statement runs.
    void Cancel() noexcept;

  private:
    void Set(SQLHSTMT statement);

    std::mutex lock_;  // held for moments only
    SQLHSTMT statement_ = SQL_NULL_HSTMT;
};

// The process's environment; made on first use.
SQLHANDLE OdbcEnvironment();

// An attribute's number, in the place of the pointer that ODBC declares for both.
SQLPOINTER OdbcNumber(std::uintptr_t number);

std::u16string OdbcWide(std::string_view text);
std::string OdbcNarrow(const SQLWCHAR* text, std::size_t units);

// All diagnostic records of a handle, in order. Must be called before any other call on it.
std::vector<DriverError> OdbcDiagnostics(SQLSMALLINT type, SQLHANDLE handle);

// A record of a line that is gone.
bool IsBrokenLine(const DriverError& record);
// The line is gone, as far as the driver has noticed; costs no trip.
bool IsDead(SQLHANDLE line);

}  // namespace vicenter::ado
