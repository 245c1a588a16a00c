// A program with short words of its own beside all of the library's, but those that are its
// classes.
struct Line {};
struct Key {};
struct Date {};
struct Row {};
struct Column {};
struct Table {};
struct Entry {};
struct List {};
struct Member {};
struct Parameter {};
struct Literal {};
struct Default {};
struct Clear {};
struct Kind {};
struct Text {};
struct Value {};
struct Walker {};
struct Time {};
struct Money {};
struct Name {};

#include "qdclgl/qdclgl.h"

using namespace qdclgl;

Line line;
Key key;
Date date;
Row row;
Column column;
Table table;
Entry entry;
List list;
Member member;
Parameter parameter;
Literal literal;
Default default_value;
Clear clear;
Kind kind;
Text text;
Value value;
Walker walker;
Time now;
Money money;
Name name;

// Rows are found by a class of the program's own all the same.
class Sample final : public Object {
  QD_MEMBERS(Sample, Object, Creatable, "A sample.")

 public:
  QD_PROPERTY(Get, Long, Count, "The number.", DefaultMember)
};
Long Sample::Count() const { return 1; }
