// The containers as JScript uses them.
var row, list, rows, groups, walk, text, elements;

testCase("a field of a recordset is found by its name alone");
rows = new ActiveXObject("QDL.Recordset");
rows.Fields.Append("FID");
rows.Fields.Append("FName");
rows.Open();
rows.AddNew();
// Not every JScript can assign to what a variable is called with.
rows("FID").Value = 1;
rows("FName").Value = "one";
rows.AddNew();
rows("FID").Value = 2;
rows(1).Value = "two";
rows.MoveFirst();
check(rows("FID").Value, "number 1");
check("" + rows("FName"), "string one");
check(rows(0) + 1, "number 2");
check(errorOf(function () { rows("FNone"); }), "number 3265");

testCase("the fields of a recordset are walked");
text = "";
for (walk = new Enumerator(rows.Fields); !walk.atEnd(); walk.moveNext()) {
  text += walk.item().Name + "=" + walk.item() + ";";
}
check(text, "string FID=1;FName=one;");

testCase("the rows that GetRows reads are an array of fields by rows");
elements = new VBArray(rows.GetRows());
check(elements.dimensions() + " " + elements.ubound(1) + " " + elements.ubound(2), "string 2 1 1");
check(elements.getItem(0, 1) + elements.getItem(1, 0), "string 2one");

testCase("the keys and the items of a Dictionary are arrays");
row = new ActiveXObject("QDL.Dictionary");
row.Add("a", 1);
row.Add("b", "two");
check(new VBArray(row.Keys()).toArray().join(), "string a,b");
check(new VBArray(row.Items()).toArray().join(), "string 1,two");
check(row.Exists("b"), "boolean true");
check(errorOf(function () { row.Add("a", 2); }), "number 457");

testCase("a Dictionary and a Vector are walked");
text = "";
for (walk = new Enumerator(row); !walk.atEnd(); walk.moveNext()) text += walk.item() + ";";
check(text, "string a;b;");
list = new ActiveXObject("QDL.Vector");
list.Append("x");
list.Append(7);
text = "";
for (walk = new Enumerator(list); !walk.atEnd(); walk.moveNext()) text += walk.item() + ";";
check(text, "string x;7;");

testCase("null and undefined are Nothing where an object is asked for");
groups = new ActiveXObject("QDCLGL.VoucherGroupSet");
groups.RecordSet = rows;
check(groups.RecordSet.RecordCount, "number 2");
groups.RecordSet = null;
check(groups.RecordSet, "null");
groups.RecordSet = rows;
groups.RecordSet = undefined;
check(groups.RecordSet, "null");

testCase("any other value that is no object is refused there");
check(errorOf(function () { groups.RecordSet = 5; }), "number 438");
check(errorOf(function () { groups.RecordSet = ""; }), "number 438");
check(errorOf(function () { groups.RecordSet = row; }), "number 13");

testCase("null stays Null, and undefined Empty, where any value is taken");
row.Value("null") = null;
row.Value("empty") = undefined;
check(row("null"), "null");
check(typeof row("empty"), "string undefined");

finish();
