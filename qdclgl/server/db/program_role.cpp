#include "qdclgl/server/db/program_role.h"

#include <string>

#include "qdclgl/server/db/refusals.h"

namespace qdclgl::server {

namespace {

// In one message: the database makes the statements, which knows how to quote names.
void Grant(Database& db, std::string_view role) {
  const auto grants = db.QueryValue<std::string>(
      "SELECT format('GRANT USAGE ON SCHEMA %I TO %I;', current_schema(), who)"
      " || string_agg(format('GRANT %s ON TABLE %I TO %I;',"
      " CASE table_name WHEN 't_schema' THEN 'SELECT' WHEN 't_audit' THEN 'SELECT, INSERT'"
      " WHEN 't_systemprofile' THEN 'SELECT, INSERT, UPDATE'"
      " ELSE 'SELECT, INSERT, UPDATE, DELETE' END, table_name, who), '')"
      " FROM information_schema.tables, (SELECT CAST(? AS TEXT) AS who) AS role"
      " WHERE table_schema = current_schema() GROUP BY who",
      role);
  db.ExecuteScript(grants.value_or(""));
}

}  // namespace

void GrantToProgramRole(Database& db, std::string_view role) {
  const std::string called = "Role \"" + std::string(role) + "\"";
  if (db.IsSQLite()) {
    Refuse(refusal::kBadValue, called + ": a SQLite file knows no roles; guard the file.");
  }
  const auto can_do_more = db.QueryValue<bool>(
      "SELECT CASE WHEN rolsuper OR pg_has_role(rolname, current_user, 'MEMBER') THEN 1 ELSE 0 END"
      " FROM pg_roles WHERE rolname = ?",
      role);
  if (!can_do_more) Refuse(refusal::kBadValue, called + ": the database has no such role.");
  if (*can_do_more) {
    Refuse(refusal::kBadValue,
           called + ": it is a superuser or the owner of the tables, and could do everything.");
  }
  db.ExecuteScript(
      db.QueryValue<std::string>(
            "SELECT format('REVOKE CREATE ON SCHEMA %I FROM PUBLIC', current_schema())")
          .value_or(""));
  Grant(db, role);
}

void GrantToProgramRoles(Database& db) {
  if (db.IsSQLite()) return;
  for (const auto& [role] : db.Query<std::string>(
           "SELECT DISTINCT CAST(grantee AS TEXT) FROM information_schema.role_table_grants"
           " WHERE table_schema = current_schema() AND table_name = 't_schema'"
           " AND privilege_type = 'SELECT' AND grantee <> current_user")) {
    Grant(db, role);
  }
}

}  // namespace qdclgl::server
