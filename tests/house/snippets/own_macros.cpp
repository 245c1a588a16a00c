// A program, or a header of the system, that has made macros of common words.
#define MEMBERS 1
#define BASE_MEMBERS 1
#define DEFINE_MEMBERS 1
#define METHOD 1
#define FIELD 1
#define PROPERTY 1
#define INDEXED 1
#define VARIABLE 1
#define INHERITED 1
#define READER 1
#define WORD unsigned short
#define BYTE unsigned char
#define BOOL int
#define TRUE 1
#define FALSE 0
#define ERROR 0
#define DELETE 1
#define IN
#define OUT
#define OPTIONAL
#define CONST const
#define VOID void
#define interface struct
#define small char
#define near
#define far
#define min(a, b) ((a) < (b) ? (a) : (b))
#define max(a, b) ((a) > (b) ? (a) : (b))
#define GetObject GetObjectW
#define GetMessage GetMessageW
#define Line 1
#define Yield()
#define STRIP 1
#define ROW 1
#define ELEMENT 1
#define CONSTANT 1

#include "qdclgl/qdclgl.h"

int main() { return qdclgl::Version().empty() ? 1 : 0; }
