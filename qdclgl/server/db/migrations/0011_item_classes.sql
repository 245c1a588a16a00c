-- Item classes with the fields of their items
CREATE TABLE t_ItemClass (
  FItemClassID IDENTITY_FROM_1000,
  FVersion INTEGER NOT NULL,
  FNumber TEXT NOT NULL UNIQUE,
  FName TEXT NOT NULL,
  FName_Cht TEXT NOT NULL,
  FName_en TEXT NOT NULL,
  FType INTEGER NOT NULL,
  FImport INTEGER NOT NULL,
  FRemark TEXT NOT NULL,
  FLastPropID INTEGER NOT NULL
);

-- The rows of class 0 are the fields that every class begins with.
CREATE TABLE t_ItemClassField (
  FItemClassID INTEGER NOT NULL,
  FPropID INTEGER NOT NULL,
  FName TEXT NOT NULL,
  FDataType INTEGER NOT NULL,
  FPrecision INTEGER NOT NULL,
  FScale INTEGER NOT NULL,
  FActualType INTEGER NOT NULL,
  FActualSize INTEGER NOT NULL,
  FSQLColumnName TEXT NOT NULL,
  FBehavior TEXT NOT NULL,
  FComCall TEXT NOT NULL,
  FDefaultValue TEXT NOT NULL,
  FDisplayField TEXT NOT NULL,
  FFilterField TEXT NOT NULL,
  FIsDisplay INTEGER NOT NULL,
  FIsInput INTEGER NOT NULL,
  FIsShownList INTEGER NOT NULL,
  FPageName TEXT NOT NULL,
  FSaveRule TEXT NOT NULL,
  FSearch INTEGER NOT NULL,
  FSrcField TEXT NOT NULL,
  FSrcTable TEXT NOT NULL,
  FViewMask INTEGER NOT NULL,
  FSlot TEXT NOT NULL,
  PRIMARY KEY (FItemClassID, FPropID)
) CLUSTERED;

INSERT INTO t_ItemClassField VALUES (0, 1, '代码', 200, 40, 0, 202, 40, 'FNumber', '', '', '', '',
  '', 1, 1, 1, '1.基本资料', '', 0, '', '', 0, '');
INSERT INTO t_ItemClassField VALUES (0, 2, '名称', 200, 255, 0, 202, 255, 'FName', '', '', '', '',
  '', 1, 1, 1, '1.基本资料', '', 0, '', '', 0, '');
INSERT INTO t_ItemClassField VALUES (0, 3, '上级', 3, 0, 0, 3, 4, 'FParentID', '', '', '', '', '',
  1, 1, 0, '1.基本资料', '', 0, '', '', 0, '');
INSERT INTO t_ItemClassField VALUES (0, 4, '备注', 200, 255, 0, 202, 255, 'FRemark', '', '', '', '',
  '', 1, 1, 0, '1.基本资料', '', 0, '', '', 0, '');

-- The classes that all books have. Those of a user's own begin with the id 1000.
INSERT INTO t_ItemClass VALUES (1, 1, 'DEP', '部门', '部門', 'Department', 0, 0, '', 100);
INSERT INTO t_ItemClass VALUES (2, 1, 'STAFF', '职员', '職員', 'Staff', 0, 0, '', 100);
INSERT INTO t_ItemClass VALUES (3, 1, 'CUSTOMER', '客户', '客戶', 'Customer', 0, 0, '', 100);
INSERT INTO t_ItemClass VALUES (4, 1, 'SUPPLIER', '供应商', '供應商', 'Supplier', 0, 0, '', 100);
INSERT INTO t_ItemClass VALUES (5, 1, 'GOODS', '商品', '商品', 'Goods', 0, 0, '', 100);
INSERT INTO t_ItemClassField SELECT c.FItemClassID, f.FPropID, f.FName, f.FDataType, f.FPrecision,
  f.FScale, f.FActualType, f.FActualSize, f.FSQLColumnName, f.FBehavior, f.FComCall,
  f.FDefaultValue, f.FDisplayField, f.FFilterField, f.FIsDisplay, f.FIsInput, f.FIsShownList,
  f.FPageName, f.FSaveRule, f.FSearch, f.FSrcField, f.FSrcTable, f.FViewMask,
  f.FSlot
  FROM t_ItemClass c CROSS JOIN t_ItemClassField f WHERE f.FItemClassID = 0;
INSERT INTO t_ItemClass VALUES (999, 1, '', '', '', '', 0, 0, '', 100);
DELETE FROM t_ItemClass WHERE FItemClassID = 999;
