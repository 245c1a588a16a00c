// Leaks that are other libraries' own, for the builds that look for leaks.
extern "C" {

const char* __lsan_default_suppressions();

const char* __lsan_default_suppressions() {
  // A connection that is cut while SOCI sets it up, between libpq's success and its own: its
  // constructor throws and forgets what libpq gave. Sessions of our own that were forgotten would
  // still be told, since the object that holds them is made in our code.
  return "leak:libsoci_postgresql.so\n";
}

}  // extern "C"
