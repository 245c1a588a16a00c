# Written by scripts/update-derived from the member rows.
import datetime
import decimal
from collections.abc import Callable, Iterable, Iterator, MutableMapping, MutableSequence, Sequence
from typing import Any, ClassVar

from qdclgl import _core
from qdclgl._errors import Error, Refusal
from qdclgl._values import Ref

__version__: str

class Object: ...

class Enumerator(Object, Iterator[Any]):
    def __iter__(self) -> Enumerator: ...
    def __next__(self) -> Any: ...

class Property(Object):
    """One key of a bag."""
    @property
    def Name(self) -> str:
        """The key."""
    @property
    def Value(self) -> Any:
        """The value of the key: an object as it is, anything else as text. A write stores the value and marks the bag's owner modified."""
    @Value.setter
    def Value(self, value: Any) -> None: ...

class Properties(Object, MutableMapping[str, Any]):
    """The keys and values of one object."""
    def Lookup(self, PropName: str) -> bool:
        """True when the key exists."""
    def NewEnum(self) -> _core.Enumerator:
        """The keys in order, as Property objects."""
    @property
    def Count(self) -> int:
        """The number of keys."""
    @property
    def Dictionary(self) -> _core.Dictionary:
        """The live Dictionary. What is written into it reaches the server on save, and does not set the change flag."""
    def Item(self, index: object) -> _core.Property:
        """A key by position from 1 or by name; a name need not exist. Error 5 for a position outside and for a key that is neither number nor text."""
    def __getitem__(self, key: str | int) -> Any: ...
    def __setitem__(self, key: str | int, value: Any) -> None: ...
    def __delitem__(self, key: str) -> None: ...
    def __iter__(self) -> Iterator[str]: ...
    def __len__(self) -> int: ...

class Account(Object):
    """An account of the chart of accounts."""
    def SetProps(self, Name: str, value: Any) -> None:
        """Writes any key, one without a member of its own included."""
    def CancelChanges(self) -> None:
        """Throws the working copy away and takes a new copy of the row as it last came. No server call."""
    def CheckAccountInVoucher(self) -> bool:
        """Whether a voucher uses the account; False for an account that is not saved. Calls CheckAccountInVoucher."""
    def Clone(self) -> _core.Account:
        """A new unsaved account with the working values of this one, unmodified."""
    def Construct(self, dict: _core.Dictionary | None | Ref[Any], xa: object) -> None:
        """Makes the object of a row, or an empty one of Nothing; a row that can't be copied leaves the object as it was. No server call."""
    def ExistsSpecialChild(self) -> bool:
        """Whether the account has a special child; False for an account that is not saved. Calls ExistsSpecialChild."""
    def GetFullName(self, Separator: str = ...) -> str:
        """The full name, put together by the server with a separator; empty text for an account that is not saved. Calls GetFullName."""
    def Refresh(self) -> None:
        """Reads the row again; does nothing for an object that is not saved. Calls GetDetail."""
    def SaveChanges(self) -> None:
        """Writes a changed row to the server and reads it again; does nothing without a change. Calls Create or Update, then GetDetail."""
    def SetAccountID(self, lngAccountID: int) -> None:
        """Sets the id alone; Refresh then loads that account."""
    @property
    def AccountID(self) -> int:
        """The id of the account; 0 while it is not saved."""
    @property
    def Acctint(self) -> bool:
        """Carried for the server."""
    @Acctint.setter
    def Acctint(self, value: bool) -> None: ...
    @property
    def Acnt(self) -> bool:
        """Carried for the server."""
    @Acnt.setter
    def Acnt(self, value: bool) -> None: ...
    @property
    def AcntID(self) -> int:
        """Set by the server."""
    @property
    def AcntType(self) -> int:
        """Carried for the server."""
    @AcntType.setter
    def AcntType(self, value: int) -> None: ...
    @property
    def AdjustRate(self) -> bool:
        """Whether the account takes part in the adjustment of rates."""
    @AdjustRate.setter
    def AdjustRate(self, value: bool) -> None: ...
    @property
    def Contact(self) -> bool:
        """Whether the account keeps contacts."""
    @Contact.setter
    def Contact(self, value: bool) -> None: ...
    @property
    def Control(self) -> int:
        """Set by the server."""
    @property
    def ControlSystem(self) -> int:
        """Carried for the server."""
    @ControlSystem.setter
    def ControlSystem(self, value: int) -> None: ...
    @property
    def CurrencyID(self) -> int:
        """Id of the account's currency."""
    @CurrencyID.setter
    def CurrencyID(self, value: int) -> None: ...
    @property
    def CurrencyName(self) -> str:
        """Name of the account's currency."""
    @property
    def CurrencyNumber(self) -> str:
        """Number of the account's currency."""
    @property
    def DC(self) -> int:
        """The side of the balance: 0, 1 or -1. Error 380 for any other value. Key FDC."""
    @DC.setter
    def DC(self, value: int) -> None: ...
    @property
    def Delete(self) -> bool:
        """Whether the account is deleted."""
    @Delete.setter
    def Delete(self, value: bool) -> None: ...
    @property
    def Detail(self) -> bool:
        """Whether the account has no accounts below it."""
    @property
    def DetailID(self) -> int:
        """Id of the account's set of item classes."""
    @property
    def EarnAccountID(self) -> int:
        """Id of the earnings account; 0 is stored as Null. Key FEarnAccountID."""
    @EarnAccountID.setter
    def EarnAccountID(self, value: int) -> None: ...
    @property
    def FullName(self) -> str:
        """The full name as the server stored it; one blank when there is none. Key FFullName."""
    @property
    def GroupID(self) -> int:
        """Id of the account's group."""
    @GroupID.setter
    def GroupID(self, value: int) -> None: ...
    @property
    def HelperCode(self) -> str:
        """A short code to find the account by."""
    @HelperCode.setter
    def HelperCode(self, value: str) -> None: ...
    @property
    def Interest(self) -> bool:
        """Whether the account bears interest."""
    @Interest.setter
    def Interest(self, value: bool) -> None: ...
    @property
    def intRate(self) -> float:
        """Rate of interest."""
    @intRate.setter
    def intRate(self, value: float) -> None: ...
    @property
    def IsAcnt(self) -> bool:
        """Set by the server."""
    @property
    def IsBank(self) -> bool:
        """Whether the account is a bank account."""
    @IsBank.setter
    def IsBank(self, value: bool) -> None: ...
    @property
    def IsBudget(self) -> bool:
        """Whether the account has a budget."""
    @IsBudget.setter
    def IsBudget(self, value: bool) -> None: ...
    @property
    def IsBusi(self) -> bool:
        """Carried for the server."""
    @IsBusi.setter
    def IsBusi(self, value: bool) -> None: ...
    @property
    def IsCashFlow(self) -> bool:
        """Whether the account takes part in the cash flow."""
    @IsCashFlow.setter
    def IsCashFlow(self, value: bool) -> None: ...
    @property
    def IsCash(self) -> bool:
        """Whether the account is a cash account."""
    @IsCash.setter
    def IsCash(self, value: bool) -> None: ...
    @property
    def Journal(self) -> bool:
        """Whether a journal is kept of the account."""
    @Journal.setter
    def Journal(self, value: bool) -> None: ...
    @property
    def LastIntDate(self) -> datetime.datetime:
        """The day up to which interest was computed."""
    @LastIntDate.setter
    def LastIntDate(self, value: datetime.datetime) -> None: ...
    @property
    def Level(self) -> int:
        """The level in the tree, set by the server."""
    @property
    def MeasureUnit(self) -> str:
        """Name of the unit; empty text while MeasureUnitID is 0. Key FMeasureUnit."""
    @MeasureUnit.setter
    def MeasureUnit(self, value: str) -> None: ...
    @property
    def MeasureUnitID(self) -> int:
        """Id of the unit."""
    @MeasureUnitID.setter
    def MeasureUnitID(self, value: int) -> None: ...
    @property
    def Message(self) -> str:
        """A text to show with the account."""
    @Message.setter
    def Message(self, value: str) -> None: ...
    @property
    def Modified(self) -> bool:
        """Whether a member was written since the last load."""
    @property
    def Name(self) -> str:
        """The account's name."""
    @Name.setter
    def Name(self, value: str) -> None: ...
    @property
    def Number(self) -> str:
        """The account's number, stored in upper case. Key FNumber."""
    @Number.setter
    def Number(self, value: str) -> None: ...
    @property
    def ParentID(self) -> int:
        """Id of the account above, set by the server."""
    @property
    def Properties(self) -> _core.Properties:
        """All keys and values of the object, those without a member of their own included."""
    @property
    def Quantities(self) -> bool:
        """Whether quantities are kept."""
    @Quantities.setter
    def Quantities(self, value: bool) -> None: ...
    @property
    def RootID(self) -> int:
        """Id of the topmost account, set by the server."""
    @property
    def SpecialType(self) -> int:
        """Carried for the server."""
    @SpecialType.setter
    def SpecialType(self, value: int) -> None: ...
    @property
    def UnitGroup(self) -> str:
        """Name of the unit's group, set by the server."""
    @property
    def UnitGroupID(self) -> int:
        """Id of the unit's group."""
    @UnitGroupID.setter
    def UnitGroupID(self, value: int) -> None: ...
    @property
    def UUID(self) -> str:
        """The account's global identifier; any text."""
    @UUID.setter
    def UUID(self, value: str) -> None: ...
    @property
    def ViewMsg(self) -> bool:
        """Whether the message is shown."""
    @ViewMsg.setter
    def ViewMsg(self, value: bool) -> None: ...
    def SetTransactionContext(self, xa: object, /) -> None: ...

class AccountSet(Object):
    """The chart of accounts."""
    @property
    def ListOptions(self) -> int:
        """Options for the next Refresh."""
    @ListOptions.setter
    def ListOptions(self, value: int) -> None: ...
    @property
    def Filter(self) -> str:
        """Filter for the next Refresh."""
    @Filter.setter
    def Filter(self, value: str) -> None: ...
    @property
    def Sort(self) -> str:
        """Sort order for the next Refresh."""
    @Sort.setter
    def Sort(self, value: str) -> None: ...
    @property
    def DataAuthority(self) -> int:
        """The level of data authority for the next Refresh: 1 to 3, 105 or 1052; any other value becomes 2."""
    @DataAuthority.setter
    def DataAuthority(self, value: int) -> None: ...
    def CreateNew(self, Number: object = ..., Name: object = ...) -> _core.Account:
        """A new account, with that number (in upper case) and name where given; it is not saved."""
    def ExistenceCheck(self, AccountID: object = ..., Number: object = ..., HelperCode: object = ...) -> int:
        """The id of the account with that id, number or helper code, the first one given; 0 when there is none. Calls ExistenceCheck."""
    def GetCurrent(self) -> _core.Account:
        """The entity of the row under the cursor. Error 5 behind the last row."""
    def GetNext(self) -> _core.Account:
        """The entity of the row under the cursor; then the cursor moves on. Error 5 behind the last row."""
    def IsChildAcct(self, Acct: object, ParentAcct: object) -> bool:
        """Whether the second account is the direct parent of the first; each is an id or a number, read as by Item."""
    def IsSubAcct(self, RootAcct: object, SubAcct: object) -> bool:
        """Whether the number of the first account begins the number of the second. Both are numbers (texts) or both ids; the caller's variables then hold the trimmed numbers. Error 5 for anything else."""
    def NewEnum(self) -> _core.Enumerator:
        """The entities of all rows; the set's cursor stays."""
    def Refresh(self) -> None:
        """Drops the list and fetches it again. Calls GetList."""
    def Remove(self, Key: object) -> None:
        """Deletes the account of an id (a number) or a number (a text); the list keeps showing it until Refresh. Error 5 when there is none. Calls Delete."""
    @property
    def Count(self) -> int:
        """The number of rows. Fetches the list on first use."""
    def Item(self, Key: object) -> _core.Account:
        """The account of an id (a number) or a number (a text), read from the server, with its item classes under the key _Items. Error 5 for any other key. Calls GetDetail or GetDetailByNumber, and GetListByAccount."""
    @property
    def RecordSet(self) -> _core.Recordset:
        """The list as it stands, Nothing before the first use; a recordset put here is dropped."""
    @RecordSet.setter
    def RecordSet(self, value: _core.Recordset) -> None: ...
    def SetTransactionContext(self, xa: object, /) -> None: ...
    def __len__(self) -> int: ...
    def __contains__(self, key: object, /) -> bool: ...
    def __getitem__(self, key: object, /) -> _core.Account: ...
    def __iter__(self) -> Iterator[_core.Account]: ...

class Currencyx(Object):
    """A currency with its exchange rate."""
    def CancelChanges(self) -> None:
        """Throws the working copy away and takes a new copy of the row as it last came. No server call."""
    def Construct(self, dict: _core.Dictionary | None | Ref[Any], xa: object) -> None:
        """Makes the object of a row, or an empty one of Nothing; a row that can't be copied leaves the object as it was. No server call."""
    def Refresh(self) -> None:
        """Reads the row again; does nothing for an object that is not saved. Calls GetDetail."""
    def SaveChanges(self) -> None:
        """Writes a changed row to the server and reads it again; does nothing without a change. Calls Create or Update, then GetDetail."""
    @property
    def CurrencyID(self) -> int:
        """The id of the currency; 0 while it is not saved."""
    @property
    def Deleted(self) -> bool:
        """Whether the currency is deleted."""
    @property
    def ExchangeRate(self) -> float:
        """The rate. A stored 0 reads as 1 and is mended in the row, which makes the currency modified. Error 380 for a write of 0. Key FExchangeRate."""
    @ExchangeRate.setter
    def ExchangeRate(self, value: float) -> None: ...
    @property
    def FixRate(self) -> int:
        """Carried for the server."""
    @FixRate.setter
    def FixRate(self, value: int) -> None: ...
    @property
    def MulExchangeRate(self) -> float:
        """The factor to multiply an amount by, whichever operator is set."""
    @property
    def Name(self) -> str:
        """The currency's name."""
    @Name.setter
    def Name(self, value: str) -> None: ...
    @property
    def Number(self) -> str:
        """The currency's number, stored in upper case: up to 8 letters, digits and underscores. Error 380 otherwise. Key FNumber."""
    @Number.setter
    def Number(self, value: str) -> None: ...
    @property
    def Operator(self) -> str:
        """"*" when an amount is multiplied by the rate, "/" when it is divided. Error 380 for any other text. Key FOperator."""
    @Operator.setter
    def Operator(self, value: str) -> None: ...
    @property
    def Properties(self) -> _core.Properties:
        """All keys and values of the object, those without a member of their own included."""
    @property
    def Scalex(self) -> int:
        """The number of decimals."""
    @Scalex.setter
    def Scalex(self, value: int) -> None: ...
    @property
    def UUID(self) -> str:
        """The currency's global identifier."""
    @UUID.setter
    def UUID(self, value: str) -> None: ...
    def SetTransactionContext(self, xa: object, /) -> None: ...

class CurrencySet(Object):
    """The list of currencies."""
    @property
    def ListOptions(self) -> int:
        """Options for the next Refresh."""
    @ListOptions.setter
    def ListOptions(self, value: int) -> None: ...
    @property
    def Filter(self) -> str:
        """Filter for the next Refresh."""
    @Filter.setter
    def Filter(self, value: str) -> None: ...
    @property
    def Sort(self) -> str:
        """Sort order for the next Refresh."""
    @Sort.setter
    def Sort(self, value: str) -> None: ...
    def CreateNew(self, Number: object = ..., Name: object = ...) -> _core.Currencyx:
        """A new currency, with that number and name where given; it is not saved. Error 380 for a number that can't be one."""
    def ExistenceCheck(self, CurrencyID: object = ..., Number: object = ...) -> int:
        """The id of the currency with that id or number, 0 when there is none or neither is given; the id goes first. Calls ExistenceCheck."""
    def GetCurrent(self) -> _core.Currencyx:
        """The entity of the row under the cursor. Error 5 behind the last row."""
    def GetNext(self) -> _core.Currencyx:
        """The entity of the row under the cursor; then the cursor moves on. Error 5 behind the last row."""
    def NewEnum(self) -> _core.Enumerator:
        """The entities of all rows; the set's cursor stays."""
    def Refresh(self) -> None:
        """Drops the list and fetches it again. Calls GetList."""
    def Remove(self, Key: object) -> None:
        """Deletes the currency of an id (a number) or a number (a text); the list keeps showing it until Refresh. Error 5 when there is none. Calls Delete."""
    @property
    def Count(self) -> int:
        """The number of rows. Fetches the list on first use."""
    def Item(self, Key: object) -> _core.Currencyx:
        """The entity of an id (a number) or of a number or name (a text), read from the server; an empty one when the server knows no such row. Error 5 for any other key. Calls GetDetail or the text key's method."""
    @property
    def RecordSet(self) -> _core.Recordset:
        """The list as it stands, Nothing before the first use; a recordset put here takes its place."""
    @RecordSet.setter
    def RecordSet(self, value: _core.Recordset) -> None: ...
    def SetTransactionContext(self, xa: object, /) -> None: ...
    def __len__(self) -> int: ...
    def __contains__(self, key: object, /) -> bool: ...
    def __getitem__(self, key: object, /) -> _core.Currencyx: ...
    def __iter__(self) -> Iterator[_core.Currencyx]: ...

class MultiColumn(Object):
    """A column of a multi-column ledger."""
    @property
    def AccountID(self) -> int:
        """Id of the column's account; a write leaves its number as it is. Error 13 for a read while there is none."""
    @AccountID.setter
    def AccountID(self, value: int) -> None: ...
    @property
    def AccountNumber(self) -> str:
        """Number of the column's account, as the server filled it in."""
    @property
    def ColumnID(self) -> int:
        """The column's number in its ledger. Error 13 for a read while there is none."""
    @ColumnID.setter
    def ColumnID(self, value: int) -> None: ...
    @property
    def ColumnName(self) -> str:
        """The column's heading."""
    @ColumnName.setter
    def ColumnName(self, value: str) -> None: ...
    @property
    def DC(self) -> int:
        """The side that the column counts: 1 debit, 0 credit; any number is taken. Error 13 for a read while there is none."""
    @DC.setter
    def DC(self, value: int) -> None: ...
    @property
    def DCText(self) -> str:
        """The side as a word: 借 for DC 1, 贷 for any other. Error 13 while there is no DC."""
    @property
    def Modified(self) -> bool:
        """Whether the line or anything below it was written."""
    @property
    def Properties(self) -> _core.Properties:
        """All keys and values of the object, those without a member of their own included."""

class MultiColumnSet(Object):
    """The columns of one multi-column ledger."""
    def Add(self, index: object = ...) -> None:
        """Puts a new empty line at the end, or at a position; the later lines move up, their change flags stay. Error 13 for a position that is no whole number, error 9 for one that is neither a line's nor the one behind the last, error 6 beyond 1,000,000 lines."""
    def NewEnum(self) -> _core.Enumerator:
        """The lines in order, each with the change flag of its position."""
    def Remove(self, index: int) -> None:
        """Removes a line and its change flag."""
    def SortByAccountNumber(self) -> None:
        """Sorts the columns by the numbers of their accounts, compared as texts. The change flags stay at their positions."""
    def SortByDC(self) -> None:
        """Brings the debit columns before the credit columns; those of one side may change their order. The change flags stay at their positions."""
    @property
    def Count(self) -> int:
        """The number of lines. A write adds empty lines or cuts lines off the end, and marks the list modified in any case. Error 9 for a negative number, error 6 beyond 1,000,000 lines; nothing changes then."""
    @Count.setter
    def Count(self, value: int) -> None: ...
    def Item(self, index: int) -> _core.MultiColumn:
        """The column at a position from 1, with the change flag of that position. Error 9 outside."""
    @property
    def Modified(self) -> bool:
        """Whether the list or any line of it was written."""
    def __len__(self) -> int: ...
    def __iter__(self) -> Iterator[Any]: ...

class MultiLedger(Object):
    """The layout of a multi-column ledger."""
    def CancelChanges(self) -> None:
        """Throws the working copy away and takes a new copy of the row as it last came. No server call."""
    def Refresh(self) -> None:
        """Reads the row again; does nothing for an object that is not saved. Calls GetDetail."""
    def SaveChanges(self) -> None:
        """Writes a changed row to the server and reads it again; does nothing without a change. Calls Create or Update, then GetDetail."""
    @property
    def AccountID(self) -> int:
        """Id of the ledger's account; a write leaves its name and number as they are until Refresh."""
    @AccountID.setter
    def AccountID(self, value: int) -> None: ...
    @property
    def AccountName(self) -> str:
        """Name of the ledger's account, as the server filled it in."""
    @property
    def AccountNumber(self) -> str:
        """Number of the ledger's account, as the server filled it in."""
    @property
    def Columns(self) -> _core.MultiColumnSet:
        """The ledger's columns, a new view of them with each read. A ledger without any gets an empty list, which makes it one to save; the change flag stays."""
    @property
    def LedgerID(self) -> int:
        """The id of the ledger; 0 while it is not saved."""
    @property
    def LedgerName(self) -> str:
        """The ledger's name."""
    @LedgerName.setter
    def LedgerName(self, value: str) -> None: ...
    @property
    def Properties(self) -> _core.Properties:
        """All keys and values of the ledger, those without a member of their own included."""
    @property
    def SubColumns(self) -> _core.MultiSubColumnSet:
        """The ledger's sub-columns, as Columns has the columns."""

class MultiLedgerSet(Object):
    """The list of multi-column ledgers."""
    @property
    def ListOptions(self) -> int:
        """Options for the next Refresh."""
    @ListOptions.setter
    def ListOptions(self, value: int) -> None: ...
    @property
    def Filter(self) -> str:
        """Filter for the next Refresh."""
    @Filter.setter
    def Filter(self, value: str) -> None: ...
    @property
    def Sort(self) -> str:
        """Sort order for the next Refresh."""
    @Sort.setter
    def Sort(self, value: str) -> None: ...
    @property
    def m_ViewDisable(self) -> bool:
        """Whether Item gives ledgers whose account is deleted too; True at first."""
    @m_ViewDisable.setter
    def m_ViewDisable(self, value: bool) -> None: ...
    def CreateNew(self, Name: object = ...) -> _core.MultiLedger:
        """A new ledger, with that name where given; it is not saved."""
    def ExistenceCheck(self, LedgerID: object = ...) -> int:
        """The id of the ledger with that id, 0 when there is none. Error 5 without an id. Calls ExistenceCheck."""
    def GetCurrent(self) -> _core.MultiLedger:
        """The entity of the row under the cursor. Error 5 behind the last row."""
    def GetNext(self) -> _core.Currencyx:
        """Error 13 at any row, since a ledger is no currency, and error 5 behind the last one; the cursor stays. Walk the list by NewEnum, or by GetCurrent and the recordset's MoveNext."""
    def NewEnum(self) -> _core.Enumerator:
        """The entities of all rows; the set's cursor stays."""
    def Refresh(self) -> None:
        """Drops the list and fetches it again. Calls GetList."""
    def Remove(self, Key: object) -> None:
        """Deletes the ledger of an id (a number); the list keeps showing it until Refresh. Error 5 for any other key and for 0. Calls Delete."""
    @property
    def Count(self) -> int:
        """The number of rows. Fetches the list on first use."""
    def Item(self, Key: object) -> _core.MultiLedger:
        """The ledger of an id (a number), read from the server with m_ViewDisable and Filter; an empty one when the server gives none. Error 5 for any other key. Calls GetDetail."""
    @property
    def RecordSet(self) -> _core.Recordset:
        """The list as it stands, Nothing before the first use; a recordset put here takes its place."""
    @RecordSet.setter
    def RecordSet(self, value: _core.Recordset) -> None: ...
    def SetTransactionContext(self, xa: object, /) -> None: ...
    def __len__(self) -> int: ...
    def __contains__(self, key: object, /) -> bool: ...
    def __getitem__(self, key: object, /) -> _core.MultiLedger: ...
    def __iter__(self) -> Iterator[_core.MultiLedger]: ...

class MultiSubColumn(Object):
    """A sub-column of a multi-column ledger."""
    @property
    def CurrencyID(self) -> int:
        """Id of the sub-column's currency; a write leaves its number and rate as they are. Error 13 for a read while there is none."""
    @CurrencyID.setter
    def CurrencyID(self, value: int) -> None: ...
    @property
    def CurrencyNumber(self) -> str:
        """Number of the currency, as the server filled it in."""
    @property
    def ExchangeRate(self) -> float:
        """The currency's rate, as the server filled it in. Error 13 while there is none."""
    @property
    def Modified(self) -> bool:
        """Whether the line or anything below it was written."""
    @property
    def Properties(self) -> _core.Properties:
        """All keys and values of the object, those without a member of their own included."""
    @property
    def SerialNo(self) -> int:
        """The sub-column's number in its ledger; nothing else renumbers it. Error 13 for a read while there is none."""
    @SerialNo.setter
    def SerialNo(self, value: int) -> None: ...
    @property
    def SubColumnName(self) -> str:
        """The sub-column's heading."""
    @SubColumnName.setter
    def SubColumnName(self, value: str) -> None: ...

class MultiSubColumnSet(Object):
    """The sub-columns of one multi-column ledger."""
    def Add(self, index: object = ...) -> None:
        """Puts a new empty line at the end, or at a position; the later lines move up, their change flags stay. Error 13 for a position that is no whole number, error 9 for one that is neither a line's nor the one behind the last, error 6 beyond 1,000,000 lines."""
    def NewEnum(self) -> _core.Enumerator:
        """The lines in order, each with the change flag of its position."""
    def Remove(self, index: int) -> None:
        """Removes a line and its change flag."""
    @property
    def Count(self) -> int:
        """The number of lines. A write adds empty lines or cuts lines off the end, and marks the list modified in any case. Error 9 for a negative number, error 6 beyond 1,000,000 lines; nothing changes then."""
    @Count.setter
    def Count(self, value: int) -> None: ...
    def Item(self, index: int) -> _core.MultiSubColumn:
        """The column at a position from 1, with the change flag of that position. Error 9 outside."""
    @property
    def Modified(self) -> bool:
        """Whether the list or any line of it was written."""
    def __len__(self) -> int: ...
    def __iter__(self) -> Iterator[Any]: ...

class CheckType(Object):
    """A check type."""
    def CancelChanges(self) -> None:
        """Throws the working copy away and takes a new copy of the row as it last came. No server call."""
    def Construct(self, dict: _core.Dictionary | None | Ref[Any], xa: object) -> None:
        """Makes the object of a row, or an empty one of Nothing; a row that can't be copied leaves the object as it was. No server call."""
    def Refresh(self) -> None:
        """Reads the row again; does nothing for an object that is not saved. Calls GetDetail."""
    def SaveChanges(self) -> None:
        """Writes a changed row to the server and reads it again; does nothing without a change. Calls Create or Update, then GetDetail."""
    @property
    def AdjustAcctID(self) -> int:
        """The id of the account Adjust; 0 for none."""
    @AdjustAcctID.setter
    def AdjustAcctID(self, value: int) -> None: ...
    @property
    def AdjustAcctNumber(self) -> str:
        """The number of the account Adjust, key AdjustAcctNumber. A write looks up its id, 0 for an unknown one, and stores both; it calls ExistenceCheck."""
    @AdjustAcctNumber.setter
    def AdjustAcctNumber(self, value: str) -> None: ...
    @property
    def CheckAcctID(self) -> int:
        """The id of the account Check; 0 for none."""
    @CheckAcctID.setter
    def CheckAcctID(self, value: int) -> None: ...
    @property
    def CheckAcctNumber(self) -> str:
        """The number of the account Check, key CheckAcctNumber. A write looks up its id, 0 for an unknown one, and stores both; it calls ExistenceCheck."""
    @CheckAcctNumber.setter
    def CheckAcctNumber(self, value: str) -> None: ...
    @property
    def CostAcctID(self) -> int:
        """The id of the account Cost; 0 for none."""
    @CostAcctID.setter
    def CostAcctID(self, value: int) -> None: ...
    @property
    def CostAcctNumber(self) -> str:
        """The number of the account Cost, key CostAcctNumber. A write looks up its id, 0 for an unknown one, and stores both; it calls ExistenceCheck."""
    @CostAcctNumber.setter
    def CostAcctNumber(self, value: str) -> None: ...
    @property
    def Deleted(self) -> int:
        """Whether it is marked deleted, 0 or 1; a write removes nothing."""
    @Deleted.setter
    def Deleted(self, value: int) -> None: ...
    @property
    def IncomAcctID(self) -> int:
        """The id of the account Incom; 0 for none."""
    @IncomAcctID.setter
    def IncomAcctID(self, value: int) -> None: ...
    @property
    def IncomAcctNumber(self) -> str:
        """The number of the account Incom, key IncomAcctNumber. A write looks up its id, 0 for an unknown one, and stores both; it calls ExistenceCheck."""
    @IncomAcctNumber.setter
    def IncomAcctNumber(self, value: str) -> None: ...
    @property
    def ItemID(self) -> int:
        """Its id; 0 while it is not saved."""
    @property
    def Name(self) -> str:
        """Its name."""
    @Name.setter
    def Name(self, value: str) -> None: ...
    @property
    def Number(self) -> str:
        """Its number, stored in upper case: up to 80 letters, digits and underscores. Error 380 otherwise. Key FNumber."""
    @Number.setter
    def Number(self, value: str) -> None: ...
    @property
    def Properties(self) -> _core.Properties:
        """All keys and values of the object, those without a member of their own included."""
    @property
    def SellAcctID(self) -> int:
        """The id of the account Sell; 0 for none."""
    @SellAcctID.setter
    def SellAcctID(self, value: int) -> None: ...
    @property
    def SellAcctNumber(self) -> str:
        """The number of the account Sell, key SellAcctNumber. A write looks up its id, 0 for an unknown one, and stores both; it calls ExistenceCheck."""
    @SellAcctNumber.setter
    def SellAcctNumber(self, value: str) -> None: ...
    @property
    def ZZCXAcctID(self) -> int:
        """The id of the account ZZCX; 0 for none."""
    @ZZCXAcctID.setter
    def ZZCXAcctID(self, value: int) -> None: ...
    @property
    def ZZCXAcctNumber(self) -> str:
        """The number of the account ZZCX, key ZZCXAcctNumber. A write looks up its id, 0 for an unknown one, and stores both; it calls ExistenceCheck."""
    @ZZCXAcctNumber.setter
    def ZZCXAcctNumber(self, value: str) -> None: ...
    def SetTransactionContext(self, xa: object, /) -> None: ...

class CheckTypeSet(Object):
    """The check types."""
    @property
    def ListOptions(self) -> int:
        """Options for the next Refresh."""
    @ListOptions.setter
    def ListOptions(self, value: int) -> None: ...
    @property
    def Filter(self) -> str:
        """Filter for the next Refresh."""
    @Filter.setter
    def Filter(self, value: str) -> None: ...
    @property
    def Sort(self) -> str:
        """Sort order for the next Refresh."""
    @Sort.setter
    def Sort(self, value: str) -> None: ...
    def CreateNew(self, Number: object = ..., Name: object = ...) -> _core.CheckType:
        """A new entity, with that number and name where given; it is not saved. Error 380 for a number that can't be one."""
    def ExistenceCheck(self, ItemID: object = ..., Number: object = ..., Name: object = ...) -> int:
        """The id of the row with that id, number or name, the first one given; 0 when there is none. Calls ExistenceCheck."""
    def GetCurrent(self) -> _core.CheckType:
        """The entity of the row under the cursor. Error 5 behind the last row."""
    def GetNext(self) -> _core.CheckType:
        """The entity of the row under the cursor; then the cursor moves on. Error 5 behind the last row."""
    def NewEnum(self) -> _core.Enumerator:
        """Currencies (Currencyx) of all rows; the set's cursor stays. GetNext gives the set's own entities."""
    def Refresh(self) -> None:
        """Drops the list and fetches it again. Calls GetList."""
    def Remove(self, Key: object) -> None:
        """Deletes the row of an id (a number) or a number (a text); the list keeps showing it until Refresh. Error 5 when there is none. Calls Delete."""
    @property
    def Count(self) -> int:
        """The number of rows. Fetches the list on first use."""
    def Item(self, Key: object) -> _core.CheckType:
        """The entity of an id (a number) or of a number (a text), read from the server; an empty one when the server knows no such row. Error 5 for any other key. Calls GetDetail or GetDetailByNumber."""
    @property
    def RecordSet(self) -> _core.Recordset:
        """The list as it stands, Nothing before the first use; a recordset put here takes its place."""
    @RecordSet.setter
    def RecordSet(self, value: _core.Recordset) -> None: ...
    def SetTransactionContext(self, xa: object, /) -> None: ...
    def __len__(self) -> int: ...
    def __iter__(self) -> Iterator[_core.CheckType]: ...

class CustomProperty(Object):
    """The description of one field that the items of an item class have."""
    @property
    def ActualSize(self) -> int:
        """The size of the column, set by the server."""
    @property
    def ActualType(self) -> int:
        """The type of the column, set by the server."""
    @property
    def Behavior(self) -> str:
        """Carried for the server; empty text is stored as Null. Key FBehavior."""
    @Behavior.setter
    def Behavior(self, value: str) -> None: ...
    @property
    def ComCall(self) -> str:
        """Reads the key FComCall and writes the key ComCall: what is written is not read until the server has it."""
    @ComCall.setter
    def ComCall(self, value: str) -> None: ...
    @property
    def DataType(self) -> int:
        """The type of the field, a number of the recordset library; 200, a text, unless it was chosen. Error 387 for another type once the description is saved. Key FDataType."""
    @DataType.setter
    def DataType(self, value: int) -> None: ...
    @property
    def DefaultValue(self) -> str:
        """The value of the field in a new item."""
    @DefaultValue.setter
    def DefaultValue(self, value: str) -> None: ...
    @property
    def DisplayField(self) -> str:
        """The field of the source that is shown, without blanks around it. Error 387 for a field of the system. Key FDisplayField."""
    @DisplayField.setter
    def DisplayField(self, value: str) -> None: ...
    @property
    def FilterField(self) -> str:
        """Carried for the server."""
    @FilterField.setter
    def FilterField(self, value: str) -> None: ...
    @property
    def IsDisplay(self) -> bool:
        """Whether the field is shown."""
    @IsDisplay.setter
    def IsDisplay(self, value: bool) -> None: ...
    @property
    def IsInput(self) -> bool:
        """Whether the field can be entered."""
    @IsInput.setter
    def IsInput(self, value: bool) -> None: ...
    @property
    def IsShownF7(self) -> bool:
        """Whether the field is shown in the list that items are chosen from."""
    @IsShownF7.setter
    def IsShownF7(self, value: bool) -> None: ...
    @property
    def Modified(self) -> bool:
        """Whether the description was written since an object was last made of it."""
    @property
    def Name(self) -> str:
        """The name of the field, without blanks around it. A name in use, case ignored, raises error 5 with words and leaves the old one. A write to a field of the system does nothing. Key FNewName; the server knows the field by FName until the class is saved."""
    @Name.setter
    def Name(self, value: str) -> None: ...
    @property
    def PageName(self) -> str:
        """The page that the field stands on."""
    @PageName.setter
    def PageName(self, value: str) -> None: ...
    @property
    def Precision(self) -> int:
        """The size of the field. Error 387 for a field of the system. Key FPrecision."""
    @Precision.setter
    def Precision(self, value: int) -> None: ...
    @property
    def Properties(self) -> _core.Properties:
        """All keys and values of the object, those without a member of their own included."""
    @property
    def PropID(self) -> int:
        """The id of the description: below 101 for a field of the system, 32767 for one that is not saved."""
    @property
    def SaveRule(self) -> str:
        """Carried for the server, without blanks around it. Error 387 for a field of the system. Key FSaveRule."""
    @SaveRule.setter
    def SaveRule(self, value: str) -> None: ...
    @property
    def Scales(self) -> int:
        """The number of decimals. Error 387 for a field of the system. Key FScale."""
    @Scales.setter
    def Scales(self, value: int) -> None: ...
    @property
    def Search(self) -> int:
        """How the field may be searched."""
    @Search.setter
    def Search(self, value: int) -> None: ...
    @property
    def SQLColumnName(self) -> str:
        """The column of the server's table of items, set by the server."""
    @property
    def SrcField(self) -> str:
        """The field of the source that is stored, without blanks around it. Error 387 for a field of the system. Key FSrcField."""
    @SrcField.setter
    def SrcField(self, value: str) -> None: ...
    @property
    def SrcTable(self) -> str:
        """Where the values come from. Error 387 for a field of the system. Key FSrcTable."""
    @SrcTable.setter
    def SrcTable(self, value: str) -> None: ...
    @property
    def ViewMask(self) -> int:
        """Carried for the server."""
    @ViewMask.setter
    def ViewMask(self, value: int) -> None: ...

class CustomPropertySet(Object):
    """The descriptions of the fields that the items of an item class have."""
    def Add(self, Name: str = ..., DataType: int = ..., Behavior: str = ..., Precision: int = ..., Scales: int = ...) -> _core.CustomProperty:
        """A new description at the end. The behaviour is not taken over. A name in use raises error 5 with words and leaves a description without a name."""
    def ExistenceCheck(self, Name: str = ..., PropID: int = ...) -> int:
        """The position of the first description with that name, case respected, 0 when there is none. The id is not looked at."""
    def GetPageNameList(self) -> Any:
        """A Dictionary of the pages in the order in which they first stand in the list, each under its own name."""
    def NewEnum(self) -> _core.Enumerator:
        """The descriptions in order."""
    def Remove(self, index: object) -> None:
        """Removes the description at a position (a number) or with a name (anything else). Error 0x80044042 for a field of the system, error 9 when there is none; error 5, behind the removal, when another description took its name along."""
    def Sort(self, SortType: int, bDesc: bool = ...) -> None:
        """Sorts by id (0), name (1) or page and name (2), case ignored. Marks nothing modified. Error 5 for any other order."""
    @property
    def Count(self) -> int:
        """The number of descriptions."""
    def Item(self, index: object) -> _core.CustomProperty:
        """The description at a position (a number) or with a name (anything else), a new object each time. Error 9 when there is none."""
    @property
    def Modified(self) -> bool:
        """Whether the list or any description was written."""
    def __len__(self) -> int: ...
    def __contains__(self, key: object, /) -> bool: ...
    def __getitem__(self, key: object, /) -> _core.CustomProperty: ...
    def __iter__(self) -> Iterator[_core.CustomProperty]: ...

class WalkCustomPropertySet(Object):
    """The walk behind the enumerator of a CustomPropertySet."""
    def Next(self, Item: object, Done: bool | Ref[Any]) -> None:
        """Puts the next description and True into the caller's variables, and leaves both at the end."""
    def Skip(self, Done: bool | Ref[Any]) -> None:
        """Passes a description and puts True into the caller's variable, which stays at the end."""
    def Reset(self) -> None:
        """Begins again at the first description."""

class Item(Object):
    """An auxiliary item of an item class."""
    @property
    def UNDetail(self) -> bool:
        """Carried for the server; False removes the key. Key FUNDetail."""
    @UNDetail.setter
    def UNDetail(self, value: bool) -> None: ...
    @property
    def DictDeifne(self) -> _core.Dictionary:
        """The values of defined fields that UpdateDefineField hands to the server."""
    @DictDeifne.setter
    def DictDeifne(self, value: _core.Dictionary) -> None: ...
    def CancelChanges(self) -> None:
        """Throws the working copy away and takes a new copy of the row as it last came. No server call."""
    def Construct(self, dict: _core.Dictionary | None | Ref[Any], xa: object) -> None:
        """Makes the object of a row, or an empty one of Nothing; a row that can't be copied leaves the object as it was. No server call."""
    def Refresh(self) -> None:
        """Reads the item again; does nothing for one that is not saved. A failure is shown to the user, leaves the item as it is and raises nothing. Calls GetDetail."""
    def SaveChanges(self) -> None:
        """Writes a changed item to the server and reads it again as Refresh does; does nothing without a change. Calls Create with the item's class or Update, then GetDetail."""
    def UpdateDefineField(self) -> bool:
        """Hands the values of defined fields to the server, of the item's class and not of the item, then reads the item again as Refresh does; gives the server's answer. Calls UpdateDefineField, then GetDetail."""
    @property
    def ChkUserID(self) -> int:
        """Id of the user who checked the item."""
    @property
    def Deleted(self) -> bool:
        """Whether the item is deleted."""
    @Deleted.setter
    def Deleted(self, value: bool) -> None: ...
    @property
    def Detail(self) -> bool:
        """Whether the item has no items below it."""
    @property
    def FullName(self) -> str:
        """The full name, set by the server."""
    @property
    def HelpCode(self) -> str:
        """A short code to find the item by."""
    @HelpCode.setter
    def HelpCode(self, value: str) -> None: ...
    @property
    def ItemClassID(self) -> int:
        """The id of the item's class."""
    @property
    def ItemID(self) -> int:
        """The id of the item; 0 while it is not saved."""
    @property
    def ItemModel(self) -> str:
        """The model of the item, set by the server."""
    @property
    def Level(self) -> int:
        """The level in the tree, set by the server."""
    @property
    def Name(self) -> str:
        """The item's name."""
    @Name.setter
    def Name(self, value: str) -> None: ...
    @property
    def Number(self) -> str:
        """The item's number, stored in upper case. Key FNumber."""
    @Number.setter
    def Number(self, value: str) -> None: ...
    @property
    def ParentID(self) -> int:
        """Id of the item above, set by the server."""
    @property
    def Properties(self) -> _core.Properties:
        """All keys and values of the object, those without a member of their own included."""
    @property
    def UUID(self) -> str:
        """The item's global identifier. Error 5 with words for more than 38 characters."""
    @UUID.setter
    def UUID(self, value: str) -> None: ...
    def SetTransactionContext(self, xa: object, /) -> None: ...

class ItemSet(Object):
    """The list of the items of a class."""
    @property
    def ListOptions(self) -> int:
        """Options for the next Refresh."""
    @ListOptions.setter
    def ListOptions(self, value: int) -> None: ...
    @property
    def Filter(self) -> str:
        """Filter for the next Refresh."""
    @Filter.setter
    def Filter(self, value: str) -> None: ...
    @property
    def Sort(self) -> str:
        """Sort order for the next Refresh."""
    @Sort.setter
    def Sort(self, value: str) -> None: ...
    @property
    def ItemClassID(self) -> int:
        """The item class of the list and of whatever is asked for without one."""
    @ItemClassID.setter
    def ItemClassID(self, value: int) -> None: ...
    def CreateNew(self, ItemClassID: int, ParentID: int, Number: object = ..., Name: object = ...) -> Any:
        """A new Item of that class below that parent, with the number as it is and the name where given; it is not saved, and unmodified until a member is written. Error 0x80044104 without a class."""
    def ExistenceCheck(self, ItemID: object = ..., ItemClassID: int = ..., Number: object = ...) -> int:
        """The id of the item with that id, or with that number in the class given or else the set's; 0 when there is none or neither is given. Calls ExistenceCheck."""
    def GetCurrent(self, blNoCheck: bool = ...) -> Any:
        """The Item of the row under the cursor, read from the server by its id. Error 5 behind the last row. Calls GetDetail."""
    def GetNext(self) -> _core.Item:
        """The item of the row under the cursor, as GetCurrent reads it; then the cursor moves on. Error 5 behind the last row."""
    def NewEnum(self) -> _core.Enumerator:
        """The entities of all rows; the set's cursor stays."""
    def Refresh(self) -> None:
        """Drops the list and fetches it again. Calls GetList."""
    def Remove(self, ItemID: int) -> None:
        """Deletes the item of an id, whatever it is; the list keeps showing it until Refresh. Calls Delete."""
    @property
    def Count(self) -> int:
        """The number of rows. Fetches the list on first use."""
    def Item(self, ItemID: int = ..., ClassID: int = ..., Number: str = ..., blNoCheck: bool = ..., strFilter: str = ...) -> Any:
        """The Item of an id, or without one of a number in the class given or else the set's, read from the server; an empty one when the server knows no such item. Error 0x80044104 without a class, error 5 without a number. Calls GetDetail or GetDetailByNumber."""
    @property
    def Parameters(self) -> Any:
        """An object that goes to the server with the next Refresh."""
    @Parameters.setter
    def Parameters(self, value: Any) -> None: ...
    @property
    def RecordSet(self) -> _core.Recordset:
        """The list, fetched on first use; a recordset put here takes its place."""
    @RecordSet.setter
    def RecordSet(self, value: _core.Recordset) -> None: ...
    @property
    def IgnoreRight(self) -> bool:
        """Carried for the server, for the next Refresh."""
    @IgnoreRight.setter
    def IgnoreRight(self, value: bool) -> None: ...
    def SetTransactionContext(self, xa: object, /) -> None: ...
    def __len__(self) -> int: ...
    def __contains__(self, key: object, /) -> bool: ...
    def __getitem__(self, key: Any, /) -> Any: ...
    def __iter__(self) -> Iterator[Any]: ...

class ItemClass(Object):
    """A kind of auxiliary items."""
    def CancelChanges(self) -> None:
        """Constructs the object anew from the row as it last came: descriptions handed out before belong to it no more. No server call."""
    def Construct(self, dict: _core.Dictionary | None | Ref[Any], xa: object) -> None:
        """Makes the object of a row, or an empty one of Nothing; a row that can't be copied leaves the object as it was. No server call."""
    def GetF7ShownFields(self) -> _core.Recordset:
        """The fields that the list shows which items are chosen from. Calls GetShownF7Fields."""
    def Refresh(self) -> None:
        """Reads the class again and constructs the object of it, its id included: descriptions handed out before belong to it no more. Does nothing for a class that is not saved. Calls GetDetail."""
    def SaveChanges(self) -> int:
        """Writes a changed class to the server and reads it again; does nothing without a change. 0, or -1 when the server answers a new class with it: the id is then -1, and nothing is read. Calls Create or Update, then GetDetail."""
    @property
    def CustomProperties(self) -> _core.CustomPropertySet:
        """The descriptions of the items' fields, one set until the object is constructed again. The first read on a class without any makes their list and so marks the class modified. Key _PropDesc."""
    @property
    def DType(self) -> int:
        """The kind of the class."""
    @DType.setter
    def DType(self, value: int) -> None: ...
    @property
    def Import(self) -> int:
        """Set by the server."""
    @property
    def IsCustom(self) -> bool:
        """Whether the class is one of a user's own: an id from 1000 to 1999 or from 3000 to 9999."""
    @property
    def ItemClassID(self) -> int:
        """The id of the class, 0 while it is not saved. A write changes no key and sets no flag."""
    @ItemClassID.setter
    def ItemClassID(self, value: int) -> None: ...
    @property
    def Modified(self) -> bool:
        """Whether the class or a description was written."""
    @property
    def Name_Chs(self) -> str:
        """The name in simplified Chinese."""
    @property
    def Name_Cht(self) -> str:
        """The name in traditional Chinese."""
    @Name_Cht.setter
    def Name_Cht(self, value: str) -> None: ...
    @property
    def Name_en(self) -> str:
        """The name in English."""
    @Name_en.setter
    def Name_en(self, value: str) -> None: ...
    @property
    def Name(self) -> str:
        """The name in the session's language; a write goes to the key FName."""
    @Name.setter
    def Name(self, value: str) -> None: ...
    @property
    def Number(self) -> str:
        """The class's number, stored in upper case. Key FNumber."""
    @Number.setter
    def Number(self, value: str) -> None: ...
    @property
    def Properties(self) -> _core.Properties:
        """All keys and values of the object, those without a member of their own included."""
    @property
    def Remark(self) -> str:
        """A remark."""
    @Remark.setter
    def Remark(self, value: str) -> None: ...
    def SetTransactionContext(self, xa: object, /) -> None: ...

class ItemClassSet(Object):
    """The list of item classes."""
    @property
    def ListOptions(self) -> int:
        """Options for the next Refresh."""
    @ListOptions.setter
    def ListOptions(self, value: int) -> None: ...
    @property
    def Filter(self) -> str:
        """Filter for the next Refresh."""
    @Filter.setter
    def Filter(self, value: str) -> None: ...
    @property
    def Sort(self) -> str:
        """Sort order for the next Refresh."""
    @Sort.setter
    def Sort(self, value: str) -> None: ...
    def CreateNew(self, Number: object = ..., Name: object = ...) -> _core.ItemClass:
        """A new item class, with that number (in upper case) and name where given; it is not saved."""
    def ExistenceCheck(self, ItemClassID: object = ..., Number: object = ...) -> int:
        """The id of the item class with that id or number, 0 when there is none or neither is given; the id goes first. Calls ExistenceCheck."""
    def GetCurrent(self) -> _core.ItemClass:
        """The entity of the row under the cursor. Error 5 behind the last row."""
    def GetNext(self) -> _core.ItemClass:
        """The entity of the row under the cursor; then the cursor moves on. Error 5 behind the last row."""
    def NewEnum(self) -> _core.Enumerator:
        """The entities of all rows; the set's cursor stays."""
    def Refresh(self, lngSign: int = ...) -> None:
        """Drops the list and fetches it again, with a sign for the server. Calls GetList."""
    def Remove(self, Key: object) -> None:
        """Deletes the item class of an id (a number) or a number (a text); the list keeps showing it until Refresh. Error 5 when there is none. Calls Delete."""
    @property
    def Count(self) -> int:
        """The number of rows. Fetches the list on first use."""
    def Item(self, Key: object, sFilter: str = ..., bBatchUpdate: bool = ...) -> _core.ItemClass:
        """The item class of an id (a number), with a filter and a mark for the server, or of a number (a text), without them, read from the server; an empty one when the server knows no such class. Error 5 for any other key. Calls GetDetail or GetDetailByNumber."""
    @property
    def RecordSet(self) -> _core.Recordset:
        """The list as it stands, Nothing before the first use; a recordset put here takes its place."""
    @RecordSet.setter
    def RecordSet(self, value: _core.Recordset) -> None: ...
    def SetTransactionContext(self, xa: object, /) -> None: ...
    def __len__(self) -> int: ...
    def __contains__(self, key: object, /) -> bool: ...
    def __getitem__(self, key: Any, /) -> _core.ItemClass: ...
    def __iter__(self) -> Iterator[_core.ItemClass]: ...

class MeasureUnit(Object):
    """A unit of measure of a unit group."""
    def CancelChanges(self) -> None:
        """Throws the working copy away and takes a new copy of the row as it last came. No server call."""
    def Construct(self, dict: _core.Dictionary | None | Ref[Any], xa: object) -> None:
        """Makes the object of a row, or an empty one of Nothing; a row that can't be copied leaves the object as it was. No server call."""
    def Refresh(self) -> None:
        """Reads the row again; does nothing for a unit that is not saved. Calls GetUnitDetail."""
    def SaveChanges(self) -> None:
        """Writes a changed row to the server and reads it again; does nothing without a change. Calls CreateUnit or UpdateUnit, then GetUnitDetail."""
    @property
    def AuxClass(self) -> str:
        """Text for the server, without blanks at its ends. Key FAuxClass."""
    @AuxClass.setter
    def AuxClass(self, value: str) -> None: ...
    @property
    def Coefficient(self) -> float:
        """How many of the group's base make one of this unit; 1 where the row has none. Error 0x80044150 for a value of more than 15 significant digits. Key FCoefficient."""
    @Coefficient.setter
    def Coefficient(self, value: float) -> None: ...
    @property
    def Conversation(self) -> int:
        """Carried for the server."""
    @Conversation.setter
    def Conversation(self, value: int) -> None: ...
    @property
    def Deleted(self) -> bool:
        """Whether the unit is deleted."""
    @property
    def MeasureUnitID(self) -> int:
        """The id of the unit; 0 while it is not saved."""
    @property
    def Modified(self) -> bool:
        """Whether the row was edited since it last came."""
    @property
    def Name(self) -> str:
        """The unit's name."""
    @Name.setter
    def Name(self, value: str) -> None: ...
    @property
    def Number(self) -> str:
        """The unit's number, in the case it was written in."""
    @Number.setter
    def Number(self, value: str) -> None: ...
    @property
    def Precision(self) -> int:
        """Carried for the server."""
    @Precision.setter
    def Precision(self, value: int) -> None: ...
    @property
    def Properties(self) -> _core.Properties:
        """All keys and values of the object, those without a member of their own included."""
    @property
    def Standard(self) -> int:
        """Carried for the server."""
    @Standard.setter
    def Standard(self, value: int) -> None: ...
    @property
    def UnitGroupID(self) -> int:
        """The id of the unit's group."""
    @UnitGroupID.setter
    def UnitGroupID(self, value: int) -> None: ...
    @property
    def UUID(self) -> str:
        """The unit's global identifier."""
    @UUID.setter
    def UUID(self, value: str) -> None: ...
    def SetTransactionContext(self, xa: object, /) -> None: ...

class MeasureUnitSet(Object):
    """The units of one unit group."""
    @property
    def ShowDeleted(self) -> bool:
        """Whether the next Refresh brings deleted units too; written to the server's property of that name."""
    @ShowDeleted.setter
    def ShowDeleted(self, value: bool) -> None: ...
    @property
    def Filter(self) -> str:
        """Filter for the next Refresh."""
    @Filter.setter
    def Filter(self, value: str) -> None: ...
    def Append(self, MeasureUnit: _core.MeasureUnit | None | Ref[Any]) -> None:
        """Adds a unit of the set's group to the collection, saved first where it is new. Error 13 for a unit of another group, 457 for one that is there already."""
    def CreateNew(self) -> _core.MeasureUnit:
        """A new unit of the set's group. It is not saved and not in the collection."""
    def ExistenceCheck(self, UnitID: int) -> Any:
        """What the server's writing component answers to UnitExistenceCheck."""
    def Find(self, UnitNumber: str = ..., UnitName: str = ...) -> _core.MeasureUnit:
        """The first unit of the collection with that number or that name, both told exactly; Nothing when there is none. A text left out finds a unit that has none."""
    def GetUnit(self, UnitID: int) -> _core.MeasureUnit:
        """The unit of an id, of whatever group, read from the server. Calls GetUnitDetail."""
    def NewEnum(self) -> _core.Enumerator:
        """The units of the collection in order."""
    def Refresh(self) -> None:
        """Makes the collection anew of the server's list. A failure of the server leaves the former one; a row that can't be a unit leaves those before it. Writes ShowDeleted, calls GetUnitList."""
    def Remove(self, index: int = ..., MeasureUnitID: int = ...) -> None:
        """Deletes the unit that Item would give and takes it out of the collection. Error 91 when there is none. Calls DeleteUnit."""
    @property
    def Count(self) -> int:
        """The number of units in the collection."""
    def Item(self, index: int = ..., MeasureUnitID: int = ...) -> _core.MeasureUnit:
        """The unit at a position from 1, or of an id where the position is 0; Nothing when there is none, or no collection yet."""
    @property
    def UnitGroupID(self) -> int:
        """The id of the group whose units the set holds."""
    @UnitGroupID.setter
    def UnitGroupID(self, value: int) -> None: ...
    def SetTransactionContext(self, xa: object, /) -> None: ...
    def __len__(self) -> int: ...
    def __contains__(self, key: object, /) -> bool: ...
    def __getitem__(self, key: Any, /) -> _core.MeasureUnit: ...
    def __iter__(self) -> Iterator[_core.MeasureUnit]: ...

class MeasureUnitGroup(Object):
    """A group of units of measure."""
    def AdjustCoefficient(self, Factor: float, bDivision: bool = ...) -> None:
        """Has the server multiply the coefficients of all units of the group by a factor, or divide them by it; a factor of 1 makes no call. Units that callers hold stay as they are until their Refresh. Error 0x80044150 for 0 and for a factor of more than 15 significant digits."""
    def CancelChanges(self) -> None:
        """Brings back the name that the last Construct gave, also behind a save. No server call."""
    def Construct(self, xa: object, GroupID: int = ..., GroupName: str = ..., DefaultUnitID: int = ..., DefaultUnit: object = ...) -> None:
        """Makes the object of values; a default unit of Null has an empty name. No server call."""
    def ExistenceCheck(self, UnitID: object = ..., Name: object = ...) -> int:
        """The id of the unit, of whatever group, with that id, or otherwise that name; 0 when there is none or neither is given. Calls UnitExistenceCheck."""
    def GetDefaultUnit(self) -> _core.MeasureUnit:
        """The default unit, read from the server; Nothing when there is none. Calls UnitExistenceCheck and GetUnitDetail."""
    def Refresh(self) -> None:
        """Reads the group again; does nothing for one that is not saved. Calls GetUnitGroupDetail."""
    def SaveChanges(self) -> None:
        """Creates or renames the group; does nothing unless Name was written. The group is not read again. Calls CreateUnitGroup or RenameUnitGroup."""
    def SetDefaultUnit(self, UnitID: int) -> None:
        """Makes a unit the default one. DefaultUnit keeps the former name until Refresh. Calls SetDefaultMeasureUnit."""
    @property
    def DefaultUnit(self) -> str:
        """The name of the default unit, as it last came."""
    @property
    def DefaultUnitID(self) -> int:
        """The id of the default unit; 0 for none."""
    @property
    def GroupID(self) -> int:
        """The id of the group; 0 while it is not saved."""
    @property
    def Name(self) -> str:
        """The name; any write counts as a change."""
    @Name.setter
    def Name(self, value: str) -> None: ...
    @property
    def UUID(self) -> str:
        """Always empty; what is written is lost."""
    @UUID.setter
    def UUID(self, value: str) -> None: ...
    def SetTransactionContext(self, xa: object, /) -> None: ...

class MeasureUnitGroupSet(Object):
    """The list of unit groups."""
    def CreateNew(self) -> _core.MeasureUnitGroup:
        """A new group; it is not saved."""
    def ExistenceCheck(self, GroupID: object = ..., Name: object = ...) -> int:
        """The id of the group with that id, or otherwise that name, in a list that is fetched for it and stands on the row found; 0 when there is none or neither is given. Error 3001 for a name with a quote. Calls GetUnitGroupList."""
    def GetCurrent(self) -> _core.MeasureUnitGroup:
        """The entity of the row under the cursor. Error 5 behind the last row."""
    def GetNext(self) -> _core.MeasureUnitGroup:
        """The entity of the row under the cursor; then the cursor moves on. Error 5 behind the last row."""
    def NewEnum(self) -> _core.Enumerator:
        """The entities of all rows; the set's cursor stays."""
    def Refresh(self) -> None:
        """Drops the list and fetches it again. Calls GetUnitGroupList."""
    def Remove(self, Key: object) -> None:
        """Deletes the group of an id (a number) or a name (a text) and fetches the list again. Error 5 when there is none. Calls DeleteUnitGroup, behind GetUnitGroupID for a name."""
    @property
    def Count(self) -> int:
        """The number of rows. Fetches the list on first use."""
    def Item(self, Key: object) -> _core.MeasureUnitGroup:
        """The group of a key, read from the server, which decides what the key is. Error 91 when the server knows no such group. Calls GetUnitGroupDetail."""
    @property
    def RecordSet(self) -> _core.Recordset:
        """The list as it stands, Nothing before the first use; a recordset put here takes its place."""
    @RecordSet.setter
    def RecordSet(self, value: _core.Recordset) -> None: ...
    @property
    def UnitGroupID(self) -> int:
        """The group to list; 0 lists all."""
    @UnitGroupID.setter
    def UnitGroupID(self, value: int) -> None: ...
    def SetTransactionContext(self, xa: object, /) -> None: ...
    def __len__(self) -> int: ...
    def __contains__(self, key: object, /) -> bool: ...
    def __getitem__(self, key: object, /) -> _core.MeasureUnitGroup: ...
    def __iter__(self) -> Iterator[_core.MeasureUnitGroup]: ...

class Payment(Object):
    """A payment term."""
    def CancelChanges(self) -> None:
        """Throws the working copy away and takes a new copy of the row as it last came. No server call."""
    def Construct(self, dict: _core.Dictionary | None | Ref[Any], xa: object) -> None:
        """Makes the object of a row, or an empty one of Nothing; a row that can't be copied leaves the object as it was. No server call."""
    def Refresh(self) -> None:
        """Reads the row again; does nothing for an object that is not saved. Calls GetDetail."""
    def SaveChanges(self) -> None:
        """Writes a changed row to the server and reads it again; does nothing without a change. Calls Create or Update, then GetDetail."""
    @property
    def BeforeDays(self) -> int:
        """Days before, any number."""
    @BeforeDays.setter
    def BeforeDays(self, value: int) -> None: ...
    @property
    def Deleted(self) -> int:
        """Whether it is marked deleted, 0 or 1; a write removes nothing."""
    @Deleted.setter
    def Deleted(self, value: int) -> None: ...
    @property
    def ItemID(self) -> int:
        """Its id; 0 while it is not saved."""
    @property
    def MonthPayDay(self) -> int:
        """The day of the month, any number."""
    @MonthPayDay.setter
    def MonthPayDay(self, value: int) -> None: ...
    @property
    def Name(self) -> str:
        """Its name."""
    @Name.setter
    def Name(self, value: str) -> None: ...
    @property
    def Number(self) -> str:
        """Its number, stored in upper case: up to 80 letters, digits and underscores. Error 380 otherwise. Key FNumber."""
    @Number.setter
    def Number(self, value: str) -> None: ...
    @property
    def PaymentType(self) -> str:
        """The type of the term."""
    @PaymentType.setter
    def PaymentType(self, value: str) -> None: ...
    @property
    def Properties(self) -> _core.Properties:
        """All keys and values of the object, those without a member of their own included."""
    @property
    def StandDays(self) -> int:
        """Days of the term, any number."""
    @StandDays.setter
    def StandDays(self, value: int) -> None: ...
    def SetTransactionContext(self, xa: object, /) -> None: ...

class PaymentSet(Object):
    """The payment terms."""
    @property
    def ListOptions(self) -> int:
        """Options for the next Refresh."""
    @ListOptions.setter
    def ListOptions(self, value: int) -> None: ...
    @property
    def Filter(self) -> str:
        """Filter for the next Refresh."""
    @Filter.setter
    def Filter(self, value: str) -> None: ...
    @property
    def Sort(self) -> str:
        """Sort order for the next Refresh."""
    @Sort.setter
    def Sort(self, value: str) -> None: ...
    def CreateNew(self, Number: object = ..., Name: object = ...) -> _core.Payment:
        """A new entity, with that number and name where given; it is not saved. Error 380 for a number that can't be one."""
    def ExistenceCheck(self, ItemID: object = ..., Number: object = ..., Name: object = ...) -> int:
        """The id of the row with that id, number or name, the first one given; 0 when there is none. Calls ExistenceCheck."""
    def GetCurrent(self) -> _core.Payment:
        """The entity of the row under the cursor. Error 5 behind the last row."""
    def GetNext(self) -> _core.Payment:
        """The entity of the row under the cursor; then the cursor moves on. Error 5 behind the last row."""
    def NewEnum(self) -> _core.Enumerator:
        """Currencies (Currencyx) of all rows; the set's cursor stays. GetNext gives the set's own entities."""
    def Refresh(self) -> None:
        """Drops the list and fetches it again. Calls GetList."""
    def Remove(self, Key: object) -> None:
        """Deletes the row of an id (a number) or a number (a text); the list keeps showing it until Refresh. Error 5 when there is none. Calls Delete."""
    @property
    def Count(self) -> int:
        """The number of rows. Fetches the list on first use."""
    def Item(self, Key: object) -> _core.Payment:
        """The entity of an id (a number) or of a number (a text), read from the server; an empty one when the server knows no such row. Error 5 for any other key. Calls GetDetail or GetDetailByNumber."""
    @property
    def RecordSet(self) -> _core.Recordset:
        """The list as it stands, Nothing before the first use; a recordset put here takes its place."""
    @RecordSet.setter
    def RecordSet(self, value: _core.Recordset) -> None: ...
    def SetTransactionContext(self, xa: object, /) -> None: ...
    def __len__(self) -> int: ...
    def __iter__(self) -> Iterator[_core.Payment]: ...

class SettAcct(Object):
    """A settlement account."""
    def CancelChanges(self) -> None:
        """Throws the working copy away and takes a new copy of the row as it last came. No server call."""
    def Construct(self, dict: _core.Dictionary | None | Ref[Any], xa: object) -> None:
        """Makes the object of a row, or an empty one of Nothing; a row that can't be copied leaves the object as it was. No server call."""
    def Refresh(self) -> None:
        """Reads the row again; does nothing for an object that is not saved. Calls GetDetail."""
    def SaveChanges(self) -> None:
        """Writes a changed row to the server and reads it again; does nothing without a change. Calls Create or Update, then GetDetail."""
    @property
    def AccountID(self) -> int:
        """The id of the account that it names; 0 for none."""
    @AccountID.setter
    def AccountID(self, value: int) -> None: ...
    @property
    def AccountNumber(self) -> str:
        """The account's number as the server told it, key AcctNumber. A write looks up the id of that number, 0 for an unknown one, and stores it under FAcctID; the number reads as before until the next Refresh. A write calls ExistenceCheck."""
    @AccountNumber.setter
    def AccountNumber(self, value: str) -> None: ...
    @property
    def BrNo(self) -> str:
        """Carried for the server."""
    @BrNo.setter
    def BrNo(self, value: str) -> None: ...
    @property
    def Deleted(self) -> int:
        """Whether it is marked deleted, 0 or 1; a write removes nothing."""
    @Deleted.setter
    def Deleted(self, value: int) -> None: ...
    @property
    def ItemID(self) -> int:
        """Its id; 0 while it is not saved."""
    @property
    def Name(self) -> str:
        """Its name."""
    @Name.setter
    def Name(self, value: str) -> None: ...
    @property
    def Number(self) -> str:
        """Its number, stored in upper case: up to 80 letters, digits and underscores. Error 380 otherwise. Key FNumber."""
    @Number.setter
    def Number(self, value: str) -> None: ...
    @property
    def Properties(self) -> _core.Properties:
        """All keys and values of the object, those without a member of their own included."""
    @property
    def Balance(self) -> float:
        """The balance, carried for the server."""
    @Balance.setter
    def Balance(self, value: float) -> None: ...
    @property
    def StartPeriod(self) -> str:
        """The period it begins in, any text."""
    @StartPeriod.setter
    def StartPeriod(self, value: str) -> None: ...
    @property
    def BeforeEnable(self) -> bool:
        """Carried for the server."""
    @BeforeEnable.setter
    def BeforeEnable(self, value: bool) -> None: ...
    def SetTransactionContext(self, xa: object, /) -> None: ...

class SettAcctSet(Object):
    """The settlement accounts."""
    @property
    def ListOptions(self) -> int:
        """Options for the next Refresh."""
    @ListOptions.setter
    def ListOptions(self, value: int) -> None: ...
    @property
    def Filter(self) -> str:
        """Filter for the next Refresh."""
    @Filter.setter
    def Filter(self, value: str) -> None: ...
    @property
    def Sort(self) -> str:
        """Sort order for the next Refresh."""
    @Sort.setter
    def Sort(self, value: str) -> None: ...
    def CreateNew(self, Number: object = ..., Name: object = ...) -> _core.SettAcct:
        """A new entity, with that number and name where given; it is not saved. Error 380 for a number that can't be one."""
    def ExistenceCheck(self, ItemID: object = ..., Number: object = ..., Name: object = ...) -> int:
        """The id of the row with that id, number or name, the first one given; 0 when there is none. Calls ExistenceCheck."""
    def GetCurrent(self) -> _core.SettAcct:
        """The entity of the row under the cursor. Error 5 behind the last row."""
    def GetNext(self) -> _core.SettAcct:
        """The entity of the row under the cursor; then the cursor moves on. Error 5 behind the last row."""
    def NewEnum(self) -> _core.Enumerator:
        """Currencies (Currencyx) of all rows; the set's cursor stays. GetNext gives the set's own entities."""
    def Refresh(self) -> None:
        """Drops the list and fetches it again. Calls GetList."""
    def Remove(self, Key: object) -> None:
        """Deletes the row of an id (a number) or a number (a text); the list keeps showing it until Refresh. Error 5 when there is none. Calls Delete."""
    @property
    def Count(self) -> int:
        """The number of rows. Fetches the list on first use."""
    def Item(self, Key: object) -> _core.SettAcct:
        """The entity of an id (a number) or of a number (a text), read from the server; an empty one when the server knows no such row. Error 5 for any other key. Calls GetDetail or GetDetailByNumber."""
    @property
    def RecordSet(self) -> _core.Recordset:
        """The list as it stands, Nothing before the first use; a recordset put here takes its place."""
    @RecordSet.setter
    def RecordSet(self, value: _core.Recordset) -> None: ...
    def SetTransactionContext(self, xa: object, /) -> None: ...
    def __len__(self) -> int: ...
    def __iter__(self) -> Iterator[_core.SettAcct]: ...

class SettType(Object):
    """A settlement type."""
    def CancelChanges(self) -> None:
        """Throws the working copy away and takes a new copy of the row as it last came. No server call."""
    def Construct(self, dict: _core.Dictionary | None | Ref[Any], xa: object) -> None:
        """Makes the object of a row, or an empty one of Nothing; a row that can't be copied leaves the object as it was. No server call."""
    def Refresh(self) -> None:
        """Reads the row again; does nothing for an object that is not saved. Calls GetDetail."""
    def SaveChanges(self) -> None:
        """Writes a changed row to the server and reads it again; does nothing without a change. Calls Create or Update, then GetDetail."""
    @property
    def AccountID(self) -> int:
        """The id of the account that it names; 0 for none."""
    @AccountID.setter
    def AccountID(self, value: int) -> None: ...
    @property
    def AccountNumber(self) -> str:
        """The account's number as the server told it, key AcctNumber. A write looks up the id of that number, 0 for an unknown one, and stores it under FAcctID; the number reads as before until the next Refresh. A write calls ExistenceCheck."""
    @AccountNumber.setter
    def AccountNumber(self, value: str) -> None: ...
    @property
    def BrNo(self) -> str:
        """Carried for the server."""
    @BrNo.setter
    def BrNo(self, value: str) -> None: ...
    @property
    def Deleted(self) -> int:
        """Whether it is marked deleted, 0 or 1; a write removes nothing."""
    @Deleted.setter
    def Deleted(self, value: int) -> None: ...
    @property
    def ItemID(self) -> int:
        """Its id; 0 while it is not saved."""
    @property
    def Name(self) -> str:
        """Its name."""
    @Name.setter
    def Name(self, value: str) -> None: ...
    @property
    def Number(self) -> str:
        """Its number, stored in upper case: up to 80 letters, digits and underscores. Error 380 otherwise. Key FNumber."""
    @Number.setter
    def Number(self, value: str) -> None: ...
    @property
    def Properties(self) -> _core.Properties:
        """All keys and values of the object, those without a member of their own included."""
    def SetTransactionContext(self, xa: object, /) -> None: ...

class SettTypeSet(Object):
    """The settlement types."""
    @property
    def ListOptions(self) -> int:
        """Options for the next Refresh."""
    @ListOptions.setter
    def ListOptions(self, value: int) -> None: ...
    @property
    def Filter(self) -> str:
        """Filter for the next Refresh."""
    @Filter.setter
    def Filter(self, value: str) -> None: ...
    @property
    def Sort(self) -> str:
        """Sort order for the next Refresh."""
    @Sort.setter
    def Sort(self, value: str) -> None: ...
    def CreateNew(self, Number: object = ..., Name: object = ...) -> _core.SettType:
        """A new entity, with that number and name where given; it is not saved. Error 380 for a number that can't be one."""
    def ExistenceCheck(self, ItemID: object = ..., Number: object = ..., Name: object = ...) -> int:
        """The id of the row with that id, number or name, the first one given; 0 when there is none. Calls ExistenceCheck."""
    def GetCurrent(self) -> _core.SettType:
        """The entity of the row under the cursor. Error 5 behind the last row."""
    def GetNext(self) -> _core.SettType:
        """The entity of the row under the cursor; then the cursor moves on. Error 5 behind the last row."""
    def NewEnum(self) -> _core.Enumerator:
        """Currencies (Currencyx) of all rows; the set's cursor stays. GetNext gives the set's own entities."""
    def Refresh(self) -> None:
        """Drops the list and fetches it again. Calls GetList."""
    def Remove(self, Key: object) -> None:
        """Deletes the row of an id (a number) or a number (a text); the list keeps showing it until Refresh. Error 5 when there is none. Calls Delete."""
    @property
    def Count(self) -> int:
        """The number of rows. Fetches the list on first use."""
    def Item(self, Key: object) -> _core.SettType:
        """The entity of an id (a number) or of a number (a text), read from the server; an empty one when the server knows no such row. Error 5 for any other key. Calls GetDetail or GetDetailByNumber."""
    @property
    def RecordSet(self) -> _core.Recordset:
        """The list as it stands, Nothing before the first use; a recordset put here takes its place."""
    @RecordSet.setter
    def RecordSet(self, value: _core.Recordset) -> None: ...
    def SetTransactionContext(self, xa: object, /) -> None: ...
    def __len__(self) -> int: ...
    def __iter__(self) -> Iterator[_core.SettType]: ...

class SubMes(Object):
    """An entry of a sub-message dictionary."""
    def CancelChanges(self) -> None:
        """Throws the working copy away and takes a new copy of the row as it last came. No server call."""
    def Construct(self, dict: _core.Dictionary | None | Ref[Any], xa: object) -> None:
        """Makes the object of a row, or an empty one of Nothing; a row that can't be copied leaves the object as it was. No server call."""
    def Refresh(self) -> None:
        """Reads the row again; does nothing for one that is not saved. Calls GetSubMesDetail."""
    def SaveChanges(self) -> None:
        """Writes a changed row to the server and reads it again; does nothing without a change. Calls CreateSubMes or UpdateSubMes, then GetSubMesDetail."""
    @property
    def AgioRatio(self) -> float:
        """Carried for the server."""
    @AgioRatio.setter
    def AgioRatio(self, value: float) -> None: ...
    @property
    def Coefficient(self) -> float:
        """Carried for the server."""
    @Coefficient.setter
    def Coefficient(self, value: float) -> None: ...
    @property
    def ItemID(self) -> int:
        """The id of the entry; 0 while it is not saved."""
    @property
    def Modified(self) -> bool:
        """Whether the row was edited since it last came."""
    @property
    def Name(self) -> str:
        """The entry's name."""
    @Name.setter
    def Name(self, value: str) -> None: ...
    @property
    def FullName(self) -> str:
        """The entry's full name."""
    @FullName.setter
    def FullName(self, value: str) -> None: ...
    @property
    def Number(self) -> str:
        """The entry's number."""
    @Number.setter
    def Number(self, value: str) -> None: ...
    @property
    def Properties(self) -> _core.Properties:
        """All keys and values of the object, those without a member of their own included."""
    @property
    def sDay(self) -> int:
        """A count of days, carried for the server."""
    @sDay.setter
    def sDay(self, value: int) -> None: ...
    @property
    def Spec(self) -> str:
        """Text for the server."""
    @Spec.setter
    def Spec(self, value: str) -> None: ...
    @property
    def TypeID(self) -> int:
        """The id of the entry's type."""
    @TypeID.setter
    def TypeID(self, value: int) -> None: ...
    @property
    def UUID(self) -> str:
        """The entry's global identifier."""
    @UUID.setter
    def UUID(self, value: str) -> None: ...
    def SetTransactionContext(self, xa: object, /) -> None: ...

class SubMesSet(Object):
    """The entries of a sub-message dictionary."""
    @property
    def ListOptions(self) -> int:
        """Options for the next Refresh."""
    @ListOptions.setter
    def ListOptions(self, value: int) -> None: ...
    @property
    def Filter(self) -> str:
        """Filter for the next Refresh."""
    @Filter.setter
    def Filter(self, value: str) -> None: ...
    @property
    def Sort(self) -> str:
        """Sort order for the next Refresh."""
    @Sort.setter
    def Sort(self, value: str) -> None: ...
    @property
    def TypeID(self) -> int:
        """The id of the type whose entries are listed."""
    @TypeID.setter
    def TypeID(self, value: int) -> None: ...
    def CreateNew(self, TypeID: int, Number: object = ..., Name: object = ...) -> Any:
        """A new SubMes of a type, with that number and name where given, which CancelChanges brings back; it is not saved. Error 0x80044104 for type 0."""
    def ExistenceCheck(self, TypeID: object, Number: object) -> int:
        """The id of the entry of a type with that number, 0 when there is none. The set's own list stays. Error 3001 for a number with a quote. Calls GetSubMesList."""
    def GetCurrent(self) -> Any:
        """The SubMes of the row under the cursor. Error 5 behind the last row."""
    def GetNext(self) -> _core.SubMes:
        """The entity of the row under the cursor; then the cursor moves on. Error 5 behind the last row."""
    def NewEnum(self) -> _core.Enumerator:
        """The entities of all rows; the set's cursor stays."""
    def Refresh(self) -> None:
        """Drops the list and fetches it again. Calls GetSubMesList."""
    def Remove(self, ItemID: int, TypeID: int = ...) -> None:
        """Deletes an entry; the list keeps showing it until Refresh. Calls DeleteSubMes."""
    @property
    def Count(self) -> int:
        """The number of rows. Fetches the list on first use."""
    def Item(self, ItemID: int = ..., TypeID: int = ..., Number: str = ...) -> Any:
        """The SubMes of an id, or of a number in a type, read from the server; without a type the set's own is meant. Error 0x80044104 without id and type, 5 without id and number. Calls GetSubMesDetail or GetSubMesDetailByNumber."""
    @property
    def RecordSet(self) -> _core.Recordset:
        """The list as it stands, fetched again where it was closed, Nothing before the first use; a recordset put here takes its place."""
    @RecordSet.setter
    def RecordSet(self, value: _core.Recordset) -> None: ...
    def SetTransactionContext(self, xa: object, /) -> None: ...
    def __len__(self) -> int: ...
    def __iter__(self) -> Iterator[Any]: ...

class SubMesType(Object):
    """A type of sub-messages."""
    def CancelChanges(self) -> None:
        """Brings back the name that the last Construct gave, also behind a save. No server call."""
    def Construct(self, xa: object, TypeID: int = ..., Name: str = ...) -> None:
        """Makes the object of values. No server call."""
    def Refresh(self) -> None:
        """Reads the type again; does nothing for one that is not saved. Calls GetSubMesTypeDetail."""
    def SaveChanges(self) -> None:
        """Creates or renames the type; does nothing unless Name was written. The type is not read again. Calls CreateSubMesType or RenameSubMesType."""
    @property
    def Name(self) -> str:
        """The name; any write counts as a change."""
    @Name.setter
    def Name(self, value: str) -> None: ...
    @property
    def TypeID(self) -> int:
        """The id of the type; 0 while it is not saved."""
    @property
    def UUID(self) -> str:
        """Always empty; what is written is lost."""
    @UUID.setter
    def UUID(self, value: str) -> None: ...
    def SetTransactionContext(self, xa: object, /) -> None: ...

class SubMesTypeSet(Object):
    """The list of types of sub-messages."""
    @property
    def Filter(self) -> str:
        """Filter for the next Refresh."""
    @Filter.setter
    def Filter(self, value: str) -> None: ...
    def CreateNew(self) -> _core.SubMesType:
        """A new type; it is not saved."""
    def ExistenceCheck(self, ClassID: object = ..., Name: object = ...) -> int:
        """The id of the type with that id, or otherwise that name, in a list that is fetched for it and stands on the row found; 0 when there is none or neither is given. Error 3001 for a name with a quote. Calls GetSubMesTypeList."""
    def GetCurrent(self) -> _core.SubMesType:
        """The entity of the row under the cursor. Error 5 behind the last row."""
    def GetNext(self) -> _core.SubMesType:
        """The entity of the row under the cursor; then the cursor moves on. Error 5 behind the last row."""
    def NewEnum(self) -> _core.Enumerator:
        """The entities of all rows; the set's cursor stays."""
    def Refresh(self) -> None:
        """Drops the list and fetches it again. Calls GetSubMesTypeList."""
    def Remove(self, Key: object) -> None:
        """Deletes the type of an id (a number) and fetches the list again; a key of any other kind goes to the server as id 0. Error 5 with words for the types that the system comes with, 21 to 499 and 601 to 999. Calls DeleteSubMesType."""
    @property
    def Count(self) -> int:
        """The number of rows. Fetches the list on first use."""
    def Item(self, Key: object) -> _core.SubMesType:
        """The type of a key, read from the server, which decides what the key is. Error 91 when the server knows no such type. Calls GetSubMesTypeDetail."""
    @property
    def RecordSet(self) -> _core.Recordset:
        """The list as it stands, Nothing before the first use; a recordset put here takes its place."""
    @RecordSet.setter
    def RecordSet(self, value: _core.Recordset) -> None: ...
    def SetTransactionContext(self, xa: object, /) -> None: ...
    def __len__(self) -> int: ...
    def __iter__(self) -> Iterator[_core.SubMesType]: ...

class Note(Object):
    """套打项"""
    def CancelChanges(self) -> None:
        """取消上次保存以来所做的全部修改"""
    def Construct(self, dict: _core.Dictionary | None | Ref[Any], xa: object) -> None:
        """根据字典的内容构造对象"""
    def Refresh(self) -> None:
        """刷新对象"""
    def SaveChanges(self) -> None:
        """保存对此对象的修改"""
    @property
    def CreateDate(self) -> datetime.datetime:
        """创建日期"""
    @CreateDate.setter
    def CreateDate(self, value: datetime.datetime) -> None: ...
    @property
    def CreatorName(self) -> str:
        """创建者姓名"""
    @CreatorName.setter
    def CreatorName(self, value: str) -> None: ...
    @property
    def Data(self) -> Any:
        """套打项对应的格式数据"""
    @Data.setter
    def Data(self, value: Any) -> None: ...
    @property
    def ModifierName(self) -> str:
        """修改者姓名"""
    @ModifierName.setter
    def ModifierName(self, value: str) -> None: ...
    @property
    def ModifyDate(self) -> datetime.datetime:
        """最近一次修改日期"""
    @ModifyDate.setter
    def ModifyDate(self, value: datetime.datetime) -> None: ...
    @property
    def Name(self) -> str:
        """套打项名称"""
    @Name.setter
    def Name(self, value: str) -> None: ...
    @property
    def NoteID(self) -> int:
        """套打项ID"""
    @property
    def NoteType(self) -> str:
        """单据类型"""
    @NoteType.setter
    def NoteType(self, value: str) -> None: ...
    @property
    def Properties(self) -> _core.Properties:
        """属性集合"""
    def SetTransactionContext(self, xa: object, /) -> None: ...

class NoteSet(Object):
    """套打项集合"""
    @property
    def ListOptions(self) -> int:
        """Options for the next Refresh."""
    @ListOptions.setter
    def ListOptions(self, value: int) -> None: ...
    @property
    def Filter(self) -> str:
        """Filter for the next Refresh."""
    @Filter.setter
    def Filter(self, value: str) -> None: ...
    @property
    def Sort(self) -> str:
        """Sort order for the next Refresh."""
    @Sort.setter
    def Sort(self, value: str) -> None: ...
    def CreateNew(self, Name: object = ...) -> _core.Note:
        """A new note, with that name when one is given; it is not saved."""
    def ExistenceCheck(self, NoteID: object = ..., Name: object = ...) -> int:
        """The id of the note with that id or name, 0 when there is none or neither is given; the id goes first. Calls ExistenceCheck."""
    def GetCurrent(self) -> _core.Note:
        """The entity of the row under the cursor. Error 5 behind the last row."""
    def GetNext(self) -> _core.Note:
        """The entity of the row under the cursor; then the cursor moves on. Error 5 behind the last row."""
    def NewEnum(self) -> _core.Enumerator:
        """The entities of all rows; the set's cursor stays."""
    def Refresh(self) -> None:
        """Drops the list and fetches it again. Calls GetList."""
    def Remove(self, Key: object) -> None:
        """Deletes the note of an id (a number) or a name (a text); the list keeps showing it until Refresh. Error 5 when there is none and for any other key. Calls Delete."""
    @property
    def Count(self) -> int:
        """The number of rows. Fetches the list on first use."""
    def Item(self, Key: object) -> _core.Note:
        """The note of an id (a number) or of a name (a text), read from the server; an empty one when the server knows no such note. Error 5 for any other key. Calls GetDetail or GetDetailByName."""
    @property
    def RecordSet(self) -> _core.Recordset:
        """The list, fetched on first use; a recordset put here takes its place."""
    @RecordSet.setter
    def RecordSet(self, value: _core.Recordset) -> None: ...
    def SetTransactionContext(self, xa: object, /) -> None: ...
    def __len__(self) -> int: ...
    def __iter__(self) -> Iterator[_core.Note]: ...

class SystemProfile(Object):
    """The system's settings and its accounting calendar."""
    def GetSystemProfile(self, Category: str, ProfileID: str, Default: str) -> str:
        """The text of a setting, or the default when there is no such key. Error 0x80044000 for an unknown category."""
    def GLGetCheckBeforePost(self) -> bool:
        """Whether vouchers must be checked before they are posted; the local override file can force it on."""
    def GLGetCurrentPeriod(self) -> int:
        """The current accounting period."""
    def GLGetCurrentYear(self) -> int:
        """The current accounting year."""
    def GLGetEarnAccount(self) -> int:
        """Id of the account of the year's earnings."""
    def GLGetEarnAssignAccount(self) -> int:
        """Id of the account that earnings are assigned by."""
    def GLGetExpEachEnt(self) -> bool:
        """Whether every line needs an explanation; the local override file can force it on."""
    def GLGetPeriodByDate(self, d: datetime.date, nYear: int | Ref[Any]) -> int:
        """The accounting period of a date, and its year in the second argument; the calendar's month and year when the server can't tell. Calls GetPeriod."""
    def GLGetPeriodByMonth(self) -> bool:
        """Whether periods are calendar months."""
    def GLGetPeriodCount(self) -> int:
        """The number of periods in a year."""
    def GLGetPeriodDate(self, nYear: int, Period: int) -> datetime.datetime:
        """The first day of a period; 0 stands for the current year or period, and a period past the year's end counts on in the next year. Error 5 below 1, error 6 when no year can hold the period. Calls GetPeriodStartEnd."""
    def IsNeedOffline(self) -> bool:
        """Whether the server wants this client offline. Calls IsNeedOffline."""
    def Refresh(self) -> None:
        """Fetches the settings of all categories. Calls ListProfiles for each."""
    def ScGetAcctBalStop(self) -> bool:
        """Settlement option SCAcctBalStop."""
    def SCGetActionForOverDue(self) -> int:
        """Settlement option SCActionForOverDue."""
    def ScGetAutoVchNotDblChk(self) -> bool:
        """Settlement option SCAutoVchNotDblChk."""
    def SCGetBillAutoVch(self) -> bool:
        """Settlement option SCBillAutoVch."""
    def SCGetChangeRenewAcct(self) -> bool:
        """Settlement option SCChangeRenewAcct."""
    def SCGetConsignSaveAutoCheck(self) -> bool:
        """Settlement option SCConsignSaveAutoCheck."""
    def ScGetDailyEnd(self) -> bool:
        """Settlement option SCDailyEnd."""
    def SCGetDateToday(self) -> datetime.datetime:
        """Settlement option SCDateToday, the day without a time; today when it is not set or can't be read. Raises nothing."""
    def SCGetDiscAmtAcct(self) -> int:
        """Settlement option SCDiscAmtAcct."""
    def SCGetDiscIntEarnAcct(self) -> int:
        """Settlement option SCDiscIntEarnAcct."""
    def SCGetDiscInterAcct(self) -> int:
        """Settlement option SCDiscinterAcct."""
    def SCGetDpstPayWithInt(self) -> bool:
        """Settlement option SCDpstPayWithInt."""
    def SCGetForbidHistory(self) -> bool:
        """Settlement option SCForbidHistory."""
    def ScGetForIntMakeNow(self) -> bool:
        """Settlement option SCForIntMakeNow."""
    def ScGetInSettNoteReCheck(self) -> bool:
        """Settlement option SCInSettNoteReCheck."""
    def ScGetInSettReCheck(self) -> bool:
        """Settlement option SCInSettReCheck."""
    def SCGetIntAutoVch(self) -> bool:
        """Settlement option SCIntAutoVch."""
    def ScGetIntCalByBill(self) -> bool:
        """Settlement option SCIntCalByBill."""
    def SCGetIntDpstModifySum(self) -> bool:
        """Settlement option SCIntDpstModifySum."""
    def SCGetIntMultiSaveNoVch(self) -> bool:
        """Settlement option SCIntMultiSaveNoVch."""
    def SCGetIntOneYear(self) -> bool:
        """Settlement option SCIntOneYear."""
    def SCGetIntSaveAutoCheck(self) -> bool:
        """Settlement option SCIntSaveAutoCheck."""
    def SCGetIntTaxAcct(self) -> int:
        """Settlement option SCIntTaxAcct."""
    def SCGetIntTaxRate(self) -> float:
        """Settlement option SCIntTaxRate."""
    def SCGetIntToDpst(self) -> bool:
        """Settlement option SCIntToDpst."""
    def SCGetIntToLoan(self) -> bool:
        """Settlement option SCIntToLoan."""
    def SCGetIntToOneVch(self) -> bool:
        """Settlement option SCIntToOneVch."""
    def SCGetLoanPayWithInt(self) -> bool:
        """Settlement option SCLoanPayWithInt."""
    def SCGetLongTermLoanMidCal(self) -> bool:
        """Settlement option SCLongTermLoanMidCal."""
    def ScGetMakeVchInLoanExt(self) -> bool:
        """Settlement option SCMakeVchInLoanExt."""
    def ScGetMakeVchInReStat(self) -> bool:
        """Settlement option SCMakeVchInReStat."""
    def SCGetMaxLoanExt(self) -> int:
        """Settlement option SCMaxLoanExt."""
    def SCGetMaxRtStat(self) -> int:
        """Settlement option SCMaxRtStat."""
    def ScGetNotiPayBillVch(self) -> bool:
        """Settlement option SCNotiPayBillVch."""
    def SCGetOneTimeLoanMidCal(self) -> bool:
        """Settlement option SCOneTimeLoanMidCal."""
    def ScGetOverDue180(self) -> bool:
        """Settlement option SCOverDue180."""
    def ScGetOverDueNum(self) -> int:
        """Settlement option SCOverDueNum; 180 when it is not set."""
    def ScGetPayBillVch(self) -> bool:
        """Settlement option SCPayBillVch."""
    def ScGetPayNoteReCheck(self) -> bool:
        """Settlement option SCPayNoteReCheck."""
    def ScGetPayReCheck(self) -> bool:
        """Settlement option SCPayReCheck."""
    def SCGetPreIntCalDpst(self) -> bool:
        """Settlement option SCPreIntCalDpst."""
    def SCGetPreIntCalLoan(self) -> bool:
        """Settlement option SCPreIntCalLoan."""
    def SCGetPreIntCalStat(self) -> bool:
        """Settlement option SCPreIntCalStat."""
    def SCGetRtLongLoanIntMethod(self) -> int:
        """Settlement option SCRtLongLoanIntMethod."""
    def SCGetRtShortLoanIntMethod(self) -> int:
        """Settlement option SCRtShortLoanIntMethod."""
    def SCGetRtStatIntMethod(self) -> int:
        """Settlement option SCRtStatIntMethod."""
    def SCGetSettAcntSel(self) -> bool:
        """Settlement option SCSettAcntSel."""
    def SCGetSettOneVch(self) -> bool:
        """Settlement option SCSettOneVch."""
    def ScGetStrikeRed(self) -> bool:
        """Settlement option SCStrikeRed."""
    def ScGetTransferBillVch(self) -> bool:
        """Settlement option SCTransferBillVch."""
    def SCGetUsePlan(self) -> bool:
        """Settlement option SCUsePlan."""
    def SCGetYearRateStartDate(self) -> datetime.datetime:
        """Settlement option SCYearRateStartDate, the day without a time; 1995-10-25 when it is not set or can't be read. Raises nothing."""
    def SCStatIntCalWhole(self) -> bool:
        """Settlement option SCStatIntCalWhole."""
    def SetGlobalQueryStatus(self, bOffline: bool | Ref[Any]) -> None:
        """Keeps the caller's decision about working offline and writes it to the registry. Error 5 for a connection text in which no ; follows the database."""
    @property
    def CompanyAddress(self) -> str:
        """The company's address."""
    @property
    def CompanyName(self) -> str:
        """The company's name."""
    @property
    def CompanyPhone(self) -> str:
        """The company's telephone number."""
    @property
    def GLGetClosed(self) -> bool:
        """Whether the ledger is closed."""
    def Item(self, Category: str, ProfileID: str, value: Any = ...) -> str:
        """The text of a setting, empty when there is no such key; a write that changes more than the case of letters goes to the server. Error 0x80044000 for an unknown category. Calls SetProfile."""
    def ProfileList(self, Category: str = ...) -> _core.Dictionary:
        """The settings of a category, or of all categories by name: the live cache."""
    def SpecItem(self, Section: str, Key: str) -> int:
        """A number of the local override file, 0 when the file does not hold it; -1 without the file."""
    def SetTransactionContext(self, xa: object, /) -> None: ...
    def __contains__(self, key: object, /) -> bool: ...
    def __getitem__(self, key: Any, /) -> str: ...
    def __setitem__(self, key: Any, value: Any, /) -> None: ...

class Voucher(Object):
    """A journal voucher."""
    @property
    def ShowDeleted(self) -> int:
        """Whether Refresh asks for the voucher even when it is deleted; any value but 0 is true."""
    @ShowDeleted.setter
    def ShowDeleted(self, value: int) -> None: ...
    def Approve(self) -> None:
        """Approves a checked voucher that is not posted, then reads it again; otherwise does nothing. Unsaved edits are lost. Calls Approve."""
    def CancelChanges(self) -> None:
        """Throws the working copy away and takes a new copy of the row as it last came. No server call."""
    def Cash(self) -> None:
        """Marks a saved voucher as cashed, sending its working data, then reads it again. Calls Cash."""
    def Check(self) -> None:
        """Checks a saved voucher that is neither checked nor posted, then reads it again; otherwise does nothing. Unsaved edits are lost. Calls Check."""
    def Clone(self) -> _core.Voucher:
        """A copy of the working data with the same baseline, unmodified and without a transaction context."""
    def Construct(self, dict: _core.Dictionary | None | Ref[Any], xa: object) -> None:
        """Makes the object of a row, or an empty one of Nothing; a row that can't be copied leaves the object as it was. No server call."""
    def ConstructEx(self, dict: _core.Dictionary | None, xa: object) -> None:
        """As Construct."""
    def Refresh(self) -> None:
        """Reads the object again; does nothing for one that is not saved. All views taken earlier stay with the old data. Calls GetDetail."""
    def Refresh1(self) -> None:
        """Takes the working data as saved: it becomes the baseline and nothing is modified. No server call."""
    def ResetModified(self) -> None:
        """Clears the change flags of the object and of everything below it; the data stays."""
    def SaveChanges(self) -> None:
        """Saves a modified voucher. An empty foot note is saved as one blank. A new voucher is read again. Calls CheckExistCashProfit, ClearCashFlow, Update, or Create and GetDetail."""
    def SaveChanges2(self) -> None:
        """As SaveChanges, with the server told by a marker before the connection text of Update and by the kind 2 behind Create."""
    def SaveChanges1(self) -> None:
        """Saves a modified voucher as it stands; it is not read again and stays modified."""
    def UnApprove(self) -> None:
        """Takes an approval back, then reads the voucher again; does nothing unless it is checked, approved and not posted. Calls Approve."""
    def UnCash(self) -> None:
        """Takes the cashing of a saved voucher back, sending its working data, then reads it again. Calls Cash."""
    def UnCheck(self) -> None:
        """Takes the check of a voucher back that is not posted, then reads it again; otherwise does nothing. Calls Check."""
    def ValueChanged(self) -> bool:
        """Compares the voucher with its own copy; see ValueDifferent."""
    def ValueDifferent(self, vch: _core.Voucher | None | Ref[Any]) -> bool:
        """Reads both vouchers field by field up to the first difference. Always true; reading the details of a line may mark its voucher modified."""
    @property
    def AmortizeSchemeID(self) -> int:
        """Reads the key FIsAmortize and writes the key FAmortizeSchemeID."""
    @AmortizeSchemeID.setter
    def AmortizeSchemeID(self, value: int) -> None: ...
    @property
    def ApproveID(self) -> int:
        """Who approved the voucher, -1 nobody."""
    @property
    def Approver(self) -> str:
        """Name of who approved; empty text while CheckerID is -1. Key FApprover."""
    @property
    def Attachments(self) -> int:
        """The number of attached papers."""
    @Attachments.setter
    def Attachments(self, value: int) -> None: ...
    @property
    def BillInfo(self) -> _core.Dictionary:
        """A bill that travels with the voucher, Nothing when there is none. Key BillInfo."""
    @BillInfo.setter
    def BillInfo(self, value: _core.Dictionary) -> None: ...
    @property
    def BlankOutFlag(self) -> bool:
        """True exactly when the number 1 is stored. Key FBlankOutFlag."""
    @BlankOutFlag.setter
    def BlankOutFlag(self, value: bool) -> None: ...
    @property
    def Cashier(self) -> str:
        """Name of who cashed; empty text while CashierID is -1. Key FCashier."""
    @property
    def CashierID(self) -> int:
        """Who cashed the voucher, -1 nobody."""
    @property
    def Checked(self) -> bool:
        """Whether the voucher is checked."""
    @property
    def Checker(self) -> str:
        """Name of who checked; empty text while CheckerID is -1. Key FChecker."""
    @property
    def CheckerID(self) -> int:
        """Who checked the voucher, -1 nobody."""
    @property
    def CreditTotal2(self) -> decimal.Decimal:
        """The credit total as the server stored it."""
    @property
    def CreditTotal(self) -> decimal.Decimal:
        """The sum of the lines' credits, now. Error 6 beyond the range of Currency."""
    @property
    def DebitTotal2(self) -> decimal.Decimal:
        """The debit total as the server stored it."""
    @property
    def DebitTotal(self) -> decimal.Decimal:
        """The sum of the lines' debits, now. Error 6 beyond the range of Currency."""
    @property
    def DictOrig(self) -> _core.Dictionary:
        """The baseline that CancelChanges goes back to, Nothing for a new object."""
    @property
    def EditMode(self) -> str:
        """A text that travels to the server."""
    @EditMode.setter
    def EditMode(self, value: str) -> None: ...
    @property
    def Entries(self) -> _core.VoucherEntrySet:
        """The lines. Reading them marks nothing modified. Key _Entries."""
    @property
    def Explanation(self) -> str:
        """Reads the first explanation that a line has; a write stores the key FExplanation, which no read looks at."""
    @Explanation.setter
    def Explanation(self, value: str) -> None: ...
    @property
    def FootNote(self) -> str:
        """The foot note."""
    @FootNote.setter
    def FootNote(self, value: str) -> None: ...
    @property
    def Group(self) -> str:
        """The word of the voucher's group."""
    @Group.setter
    def Group(self, value: str) -> None: ...
    @property
    def GroupID(self) -> int:
        """Id of the voucher group."""
    @GroupID.setter
    def GroupID(self, value: int) -> None: ...
    @property
    def Handler(self) -> str:
        """Who handled the business."""
    @Handler.setter
    def Handler(self, value: str) -> None: ...
    @property
    def HasForCyOrUnit(self) -> bool:
        """Whether a line has a currency other than 1 or a unit. Error 6 behind the 32,767th line."""
    @property
    def InternalInd(self) -> str:
        """Carried for the server."""
    @InternalInd.setter
    def InternalInd(self, value: str) -> None: ...
    @property
    def LockDate(self) -> bool:
        """Carried for the server."""
    @LockDate.setter
    def LockDate(self, value: bool) -> None: ...
    @property
    def Modified(self) -> bool:
        """Whether the object, a line or a detail was written."""
    @property
    def Number(self) -> int:
        """The number within year, period and group."""
    @Number.setter
    def Number(self, value: int) -> None: ...
    @property
    def ObjectName(self) -> str:
        """Carried for the server; empty text is stored as Null. Key FObjectName."""
    @ObjectName.setter
    def ObjectName(self, value: str) -> None: ...
    @property
    def OwnerGroupID(self) -> int:
        """The group of the owner, -1 none."""
    @property
    def Parameter(self) -> str:
        """Carried for the server; empty text is stored as Null. Key FParameter."""
    @Parameter.setter
    def Parameter(self, value: str) -> None: ...
    @property
    def Period(self) -> int:
        """The accounting period."""
    @Period.setter
    def Period(self, value: int) -> None: ...
    @property
    def Posted(self) -> bool:
        """Whether the voucher is posted."""
    @property
    def Poster(self) -> str:
        """Name of who posted; empty text while PosterID is -1. Key FPoster."""
    @property
    def PosterID(self) -> int:
        """Who posted the voucher, -1 nobody."""
    @property
    def Preparer(self) -> str:
        """Name of who prepared the voucher."""
    @Preparer.setter
    def Preparer(self, value: str) -> None: ...
    @property
    def PreparerID(self) -> int:
        """Who prepared the voucher, -1 nobody."""
    @PreparerID.setter
    def PreparerID(self, value: int) -> None: ...
    @property
    def Properties(self) -> _core.Properties:
        """All keys and values of the object, those without a member of their own included."""
    @property
    def Reference(self) -> str:
        """The reference text."""
    @Reference.setter
    def Reference(self, value: str) -> None: ...
    @property
    def SerialNum(self) -> int:
        """The serial number."""
    @SerialNum.setter
    def SerialNum(self, value: int) -> None: ...
    @property
    def Summarized(self) -> bool:
        """Whether the voucher is summarized."""
    @property
    def TransDate(self) -> datetime.datetime:
        """The date of the business. Key FTransDate."""
    @TransDate.setter
    def TransDate(self, value: datetime.datetime) -> None: ...
    @property
    def TranType(self) -> int:
        """The kind of business."""
    @TranType.setter
    def TranType(self, value: int) -> None: ...
    @property
    def VoucherDate(self) -> datetime.datetime:
        """The date of the voucher."""
    @VoucherDate.setter
    def VoucherDate(self, value: datetime.datetime) -> None: ...
    @property
    def VoucherID(self) -> int:
        """The id of the voucher, 0 while it is not saved. A write changes no key and sets no flag."""
    @VoucherID.setter
    def VoucherID(self, value: int) -> None: ...
    @property
    def Year(self) -> int:
        """The accounting year."""
    @Year.setter
    def Year(self, value: int) -> None: ...
    def SetTransactionContext(self, xa: object, /) -> None: ...

class VoucherDetail(Object):
    """An auxiliary detail of a voucher line."""
    @property
    def Detail(self) -> bool:
        """The detail flag."""
    @Detail.setter
    def Detail(self, value: bool) -> None: ...
    @property
    def ItemClassID(self) -> int:
        """Id of the item class."""
    @ItemClassID.setter
    def ItemClassID(self, value: int) -> None: ...
    @property
    def ItemClassName(self) -> str:
        """Name of the item class."""
    @ItemClassName.setter
    def ItemClassName(self, value: str) -> None: ...
    @property
    def ItemClassNumber(self) -> str:
        """Number of the item class."""
    @ItemClassNumber.setter
    def ItemClassNumber(self, value: str) -> None: ...
    @property
    def ItemFullName(self) -> str:
        """Full name of the item."""
    @ItemFullName.setter
    def ItemFullName(self, value: str) -> None: ...
    @property
    def ItemID(self) -> int:
        """Id of the item."""
    @ItemID.setter
    def ItemID(self, value: int) -> None: ...
    @property
    def ItemName(self) -> str:
        """Name of the item."""
    @ItemName.setter
    def ItemName(self, value: str) -> None: ...
    @property
    def ItemNumber(self) -> str:
        """Number of the item."""
    @ItemNumber.setter
    def ItemNumber(self, value: str) -> None: ...
    @property
    def Modified(self) -> bool:
        """Whether the flag that the detail reports to was set: the flag of its position for a detail from a walk, the flag that all share for a detail from Item."""
    @property
    def Properties(self) -> _core.Properties:
        """All keys and values of the object, those without a member of their own included."""
    @property
    def Value(self) -> str:
        """The free value of the detail."""
    @Value.setter
    def Value(self, value: str) -> None: ...

class VoucherDetailSet(Object):
    """The auxiliary details of one voucher line."""
    def Add(self, index: object = ...) -> None:
        """Puts a new empty line at the end, or at a position; the later lines move up, their change flags stay. Error 13 for a position that is no whole number, error 9 for one that is neither a line's nor the one behind the last, error 6 beyond 1,000,000 lines."""
    def FindItem(self, ItemClassKey: object) -> _core.VoucherDetail:
        """The first detail of the item class with that number (a text, case respected) or id (a number, rounded); Nothing when there is none."""
    def NewEnum(self) -> _core.Enumerator:
        """The lines in order, each with the change flag of its position."""
    def Remove(self, index: int) -> None:
        """Removes a line and its change flag."""
    @property
    def Count(self) -> int:
        """The number of lines. A write adds empty lines or cuts lines off the end, and marks the list modified in any case. Error 9 for a negative number, error 6 beyond 1,000,000 lines; nothing changes then."""
    @Count.setter
    def Count(self, value: int) -> None: ...
    def Item(self, index: int) -> _core.VoucherDetail:
        """The detail at a position from 1. All details reached this way share the change flag of the list. Error 9 outside."""
    def __len__(self) -> int: ...
    def __contains__(self, key: object, /) -> bool: ...
    def __getitem__(self, key: int, /) -> _core.VoucherDetail: ...
    def __iter__(self) -> Iterator[_core.VoucherDetail]: ...

class VoucherEntry(Object):
    """A line of a journal voucher."""
    def Clone(self) -> _core.VoucherEntry:
        """A detached deep copy of the line, unmodified."""
    def IsEmpty(self) -> bool:
        """True when the line has no account, currency, amount, explanation and details. Asking for the details may mark the line modified, as Details does."""
    @property
    def AccountID2(self) -> int:
        """Id of the second account."""
    @AccountID2.setter
    def AccountID2(self, value: int) -> None: ...
    @property
    def AccountID(self) -> int:
        """Id of the account."""
    @AccountID.setter
    def AccountID(self, value: int) -> None: ...
    @property
    def AccountName(self) -> str:
        """Name of the account."""
    @AccountName.setter
    def AccountName(self, value: str) -> None: ...
    @property
    def AccountNumber(self) -> str:
        """Number of the account."""
    @AccountNumber.setter
    def AccountNumber(self, value: str) -> None: ...
    @property
    def AmountFor(self) -> decimal.Decimal:
        """The amount in the line's currency."""
    @AmountFor.setter
    def AmountFor(self, value: decimal.Decimal) -> None: ...
    @property
    def Amount(self) -> decimal.Decimal:
        """The amount in base currency, on the side that DC tells. A write stores the side too, and raises error 380 on a line whose side is neither 0 nor 1. Key FAmount."""
    @Amount.setter
    def Amount(self, value: decimal.Decimal) -> None: ...
    @property
    def CashFlow(self) -> Any:
        """An object that travels with the line; Nothing removes it. A write takes a Variant that holds the object, error 13 for any other. Key CashFlow."""
    @CashFlow.setter
    def CashFlow(self, value: Any) -> None: ...
    @property
    def CashFlowItem(self) -> int:
        """Id of the cash flow item."""
    @CashFlowItem.setter
    def CashFlowItem(self, value: int) -> None: ...
    @property
    def Coefficient(self) -> float:
        """Coefficient of the unit."""
    @property
    def ContrastID(self) -> int:
        """Carried for the server."""
    @ContrastID.setter
    def ContrastID(self, value: int) -> None: ...
    @property
    def Credit(self) -> decimal.Decimal:
        """The amount of a credit line, 0 on any other. A write makes the line a credit line of that amount; writing 0 beside a debit does nothing."""
    @Credit.setter
    def Credit(self, value: decimal.Decimal) -> None: ...
    @property
    def CurrencyID(self) -> int:
        """Id of the currency; 1 is the base currency."""
    @CurrencyID.setter
    def CurrencyID(self, value: int) -> None: ...
    @property
    def CurrencyName(self) -> str:
        """Name of the currency."""
    @CurrencyName.setter
    def CurrencyName(self, value: str) -> None: ...
    @property
    def CurrencyNumber(self) -> str:
        """Number of the currency."""
    @CurrencyNumber.setter
    def CurrencyNumber(self, value: str) -> None: ...
    @property
    def CussentDatabaseLocation(self) -> str:
        """Carried for the server."""
    @CussentDatabaseLocation.setter
    def CussentDatabaseLocation(self, value: str) -> None: ...
    @property
    def CussentFrameworkID(self) -> int:
        """Carried for the server."""
    @CussentFrameworkID.setter
    def CussentFrameworkID(self, value: int) -> None: ...
    @property
    def CussentFrameWorkName(self) -> str:
        """Carried for the server."""
    @CussentFrameWorkName.setter
    def CussentFrameWorkName(self, value: str) -> None: ...
    @property
    def CussentFrameWorkNum(self) -> str:
        """A read copies what is stored to CussentFrameWorkName and gives empty text. Key FCussentFrameWorkNum."""
    @CussentFrameWorkNum.setter
    def CussentFrameWorkNum(self, value: str) -> None: ...
    @property
    def CussentID(self) -> int:
        """Carried for the server."""
    @CussentID.setter
    def CussentID(self, value: int) -> None: ...
    @property
    def CussentPassword(self) -> str:
        """Carried for the server."""
    @CussentPassword.setter
    def CussentPassword(self, value: str) -> None: ...
    @property
    def CussentPropsstring(self) -> str:
        """Carried for the server."""
    @CussentPropsstring.setter
    def CussentPropsstring(self, value: str) -> None: ...
    @property
    def CussentUserName(self) -> str:
        """Carried for the server."""
    @CussentUserName.setter
    def CussentUserName(self, value: str) -> None: ...
    @property
    def DC(self) -> int:
        """The side: 1 debit, 0 credit. Error 380 for any other value. Key FDC."""
    @DC.setter
    def DC(self, value: int) -> None: ...
    @property
    def Debit(self) -> decimal.Decimal:
        """The amount of a debit line, 0 on any other. A write makes the line a debit line of that amount; writing 0 beside a credit does nothing."""
    @Debit.setter
    def Debit(self, value: decimal.Decimal) -> None: ...
    @property
    def DetailID(self) -> int:
        """Id of the line's set of details."""
    @property
    def Details(self) -> _core.VoucherDetailSet:
        """The auxiliary details. The first read on a line without any makes their list and so marks the line modified. Key _Details."""
    @property
    def ExchangeRate(self) -> float:
        """Rate of the line's currency."""
    @ExchangeRate.setter
    def ExchangeRate(self, value: float) -> None: ...
    @property
    def Explanation(self) -> str:
        """What the line is for."""
    @Explanation.setter
    def Explanation(self, value: str) -> None: ...
    @property
    def InternalInd(self) -> str:
        """Carried for the server."""
    @InternalInd.setter
    def InternalInd(self, value: str) -> None: ...
    @property
    def IsReadOnly(self) -> bool:
        """Stored only; no member looks at it."""
    @IsReadOnly.setter
    def IsReadOnly(self, value: bool) -> None: ...
    @property
    def LockAmount(self) -> bool:
        """Stored only; the amount members do not look at it."""
    @LockAmount.setter
    def LockAmount(self, value: bool) -> None: ...
    @property
    def MeasureUnit(self) -> str:
        """Name of the unit; empty text while MeasureUnitID is 0. Key FMeasureUnit."""
    @MeasureUnit.setter
    def MeasureUnit(self, value: str) -> None: ...
    @property
    def MeasureUnitID(self) -> int:
        """Id of the unit."""
    @MeasureUnitID.setter
    def MeasureUnitID(self, value: int) -> None: ...
    @property
    def MeasureUnitNumber(self) -> str:
        """Number of the unit; empty text while MeasureUnitID is 0. Key FMeasureUnitNumber."""
    @MeasureUnitNumber.setter
    def MeasureUnitNumber(self, value: str) -> None: ...
    @property
    def MGBill(self) -> _core.Dictionary:
        """A bill that travels with the line; Nothing removes it. Error 13 when a line without one is read. Key FMgBill."""
    @MGBill.setter
    def MGBill(self, value: _core.Dictionary) -> None: ...
    @property
    def MGBillID(self) -> int:
        """Id of the bill."""
    @MGBillID.setter
    def MGBillID(self, value: int) -> None: ...
    @property
    def MGBillMoney(self) -> decimal.Decimal:
        """Amount of the bill."""
    @MGBillMoney.setter
    def MGBillMoney(self, value: decimal.Decimal) -> None: ...
    @property
    def MGDetailID(self) -> int:
        """Id of the bill's detail."""
    @MGDetailID.setter
    def MGDetailID(self, value: int) -> None: ...
    @property
    def Modified(self) -> bool:
        """Whether the line or anything below it was written."""
    @property
    def Properties(self) -> _core.Properties:
        """All keys and values of the object, those without a member of their own included."""
    @property
    def Quantity(self) -> float:
        """The quantity."""
    @Quantity.setter
    def Quantity(self, value: float) -> None: ...
    @property
    def ResourceID(self) -> int:
        """Carried for the server."""
    @ResourceID.setter
    def ResourceID(self, value: int) -> None: ...
    @property
    def SettleNo(self) -> str:
        """Number of the settlement document."""
    @SettleNo.setter
    def SettleNo(self, value: str) -> None: ...
    @property
    def SettleType(self) -> str:
        """Number of the settlement type."""
    @SettleType.setter
    def SettleType(self, value: str) -> None: ...
    @property
    def SettleTypeID(self) -> int:
        """Id of the settlement type."""
    @SettleTypeID.setter
    def SettleTypeID(self, value: int) -> None: ...
    @property
    def SettleTypeName(self) -> str:
        """Name of the settlement type."""
    @SettleTypeName.setter
    def SettleTypeName(self, value: str) -> None: ...
    @property
    def TaskID(self) -> int:
        """Carried for the server."""
    @TaskID.setter
    def TaskID(self, value: int) -> None: ...
    @property
    def TransNo(self) -> str:
        """Number of the business transaction."""
    @TransNo.setter
    def TransNo(self, value: str) -> None: ...
    @property
    def UnitGroupID(self) -> int:
        """Id of the unit's group."""
    @UnitGroupID.setter
    def UnitGroupID(self, value: int) -> None: ...
    @property
    def UnitPrice(self) -> float:
        """The price of one unit."""
    @UnitPrice.setter
    def UnitPrice(self, value: float) -> None: ...

class VoucherEntrySet(Object):
    """The lines of one document."""
    def Add(self, index: object = ...) -> None:
        """Puts a new empty line at the end, or at a position; the later lines move up, their change flags stay. Error 13 for a position that is no whole number, error 9 for one that is neither a line's nor the one behind the last, error 6 beyond 1,000,000 lines."""
    def CreateNewEntry(self) -> _core.VoucherEntry:
        """A new line that belongs to no document; put it in by Item."""
    def NewEnum(self) -> _core.Enumerator:
        """The lines in order, each with the change flag of its position."""
    def Remove(self, index: int) -> None:
        """Removes a line and its change flag."""
    @property
    def Count(self) -> int:
        """The number of lines. A write adds empty lines or cuts lines off the end, and marks the list modified in any case. Error 9 for a negative number, error 6 beyond 1,000,000 lines; nothing changes then."""
    @Count.setter
    def Count(self, value: int) -> None: ...
    def Item(self, index: int, value: Any = ...) -> _core.VoucherEntry:
        """The line at a position from 1, Nothing behind the last one; error 9 below 1. A line put in takes the place of the one at that position and shares its data with the document from then on."""
    @property
    def Modified(self) -> bool:
        """Whether the list or any line of it was written."""
    def __len__(self) -> int: ...
    def __contains__(self, key: object, /) -> bool: ...
    def __getitem__(self, key: int, /) -> _core.VoucherEntry: ...
    def __setitem__(self, key: int, value: Any, /) -> None: ...
    def __iter__(self) -> Iterator[_core.VoucherEntry]: ...

class VoucherGroup(Object):
    """A word that vouchers are filed under."""
    def CancelChanges(self) -> None:
        """Throws the working copy away and takes a new copy of the row as it last came. No server call."""
    def Construct(self, dict: _core.Dictionary | None | Ref[Any], xa: object) -> None:
        """Makes the object of a row, or an empty one of Nothing; a row that can't be copied leaves the object as it was. No server call."""
    def Refresh(self) -> None:
        """Reads the row again; does nothing for an object that is not saved. Calls GetDetail."""
    def SaveChanges(self) -> None:
        """Writes a changed row to the server and reads it again; does nothing without a change. Calls Create or Update, then GetDetail."""
    @property
    def CRange(self) -> str:
        """A range text; stored for the server, never read here."""
    @CRange.setter
    def CRange(self, value: str) -> None: ...
    @property
    def DCRange(self) -> str:
        """A range text; stored for the server, never read here."""
    @DCRange.setter
    def DCRange(self, value: str) -> None: ...
    @property
    def DRange(self) -> str:
        """A range text; stored for the server, never read here."""
    @DRange.setter
    def DRange(self, value: str) -> None: ...
    @property
    def LimitMulti(self) -> int:
        """Reads 1 when the stored value is true and 0 otherwise, whatever number was written. Key FLimitMulti."""
    @LimitMulti.setter
    def LimitMulti(self, value: int) -> None: ...
    @property
    def Name(self) -> str:
        """The group's name."""
    @Name.setter
    def Name(self, value: str) -> None: ...
    @property
    def NCRange(self) -> str:
        """A range text; stored for the server, never read here."""
    @NCRange.setter
    def NCRange(self, value: str) -> None: ...
    @property
    def NDCRange(self) -> str:
        """A range text; stored for the server, never read here."""
    @NDCRange.setter
    def NDCRange(self, value: str) -> None: ...
    @property
    def NDRange(self) -> str:
        """A range text; stored for the server, never read here."""
    @NDRange.setter
    def NDRange(self, value: str) -> None: ...
    @property
    def Properties(self) -> _core.Properties:
        """All keys and values of the object, those without a member of their own included."""
    @property
    def Standard(self) -> int:
        """The standard flag."""
    @Standard.setter
    def Standard(self, value: int) -> None: ...
    @property
    def UUID(self) -> str:
        """The group's global identifier."""
    @UUID.setter
    def UUID(self, value: str) -> None: ...
    @property
    def VoucherGroupID(self) -> int:
        """The id of the group; 0 while it is not saved."""
    def SetTransactionContext(self, xa: object, /) -> None: ...

class VoucherGroupSet(Object):
    """The list of voucher groups."""
    @property
    def ListOptions(self) -> int:
        """Options for the next Refresh."""
    @ListOptions.setter
    def ListOptions(self, value: int) -> None: ...
    @property
    def Filter(self) -> str:
        """Filter for the next Refresh."""
    @Filter.setter
    def Filter(self, value: str) -> None: ...
    @property
    def Sort(self) -> str:
        """Sort order for the next Refresh."""
    @Sort.setter
    def Sort(self, value: str) -> None: ...
    def CreateNew(self, Name: object = ...) -> _core.VoucherGroup:
        """A new group, with that name when one is given; it is not saved."""
    def ExistenceCheck(self, VoucherGroupID: object = ..., Name: object = ...) -> int:
        """The id of the group with that id or name, 0 when there is none or neither is given; the id goes first. Calls ExistenceCheck."""
    def GetCurrent(self) -> _core.VoucherGroup:
        """The entity of the row under the cursor. Error 5 behind the last row."""
    def GetNext(self) -> _core.VoucherGroup:
        """The entity of the row under the cursor; then the cursor moves on. Error 5 behind the last row."""
    def NewEnum(self) -> _core.Enumerator:
        """The entities of all rows; the set's cursor stays."""
    def Refresh(self) -> None:
        """Drops the list and fetches it again. Calls GetList."""
    def Remove(self, Key: object, lngDelSign: int = ...) -> None:
        """Deletes the group of an id (a number) or a name (anything else); the list keeps showing it until Refresh. Error 5 when there is none. Calls Delete."""
    @property
    def Count(self) -> int:
        """The number of rows. Fetches the list on first use."""
    def Item(self, Key: object) -> _core.VoucherGroup:
        """The entity of an id (a number) or of a number or name (a text), read from the server; an empty one when the server knows no such row. Error 5 for any other key. Calls GetDetail or the text key's method."""
    @property
    def RecordSet(self) -> _core.Recordset:
        """The list as it stands, Nothing before the first use; a recordset put here takes its place."""
    @RecordSet.setter
    def RecordSet(self, value: _core.Recordset) -> None: ...
    def SetTransactionContext(self, xa: object, /) -> None: ...
    def __len__(self) -> int: ...
    def __contains__(self, key: object, /) -> bool: ...
    def __getitem__(self, key: object, /) -> _core.VoucherGroup: ...
    def __iter__(self) -> Iterator[_core.VoucherGroup]: ...

class VoucherSet(Object):
    """The list of vouchers."""
    @property
    def ListOptions(self) -> int:
        """Options for the next Refresh."""
    @ListOptions.setter
    def ListOptions(self, value: int) -> None: ...
    @property
    def Filter(self) -> str:
        """Filter for the next Refresh."""
    @Filter.setter
    def Filter(self, value: str) -> None: ...
    @property
    def Sort(self) -> str:
        """Sort order for the next Refresh."""
    @Sort.setter
    def Sort(self, value: str) -> None: ...
    def Cash(self, VoucherID: int, Cashed: bool) -> None:
        """Marks a voucher as cashed or takes it back; the server alone decides. Does nothing for id 0. Calls Cash."""
    def Check(self, VoucherID: int, Checked: bool) -> None:
        """Checks a voucher or takes the check back; the server alone decides. Does nothing for id 0. Calls Check."""
    def CreateNew(self, nYear: int = ..., Period: object = ..., Group: object = ..., Number: object = ...) -> _core.Voucher:
        """A new voucher of that year (0 when left out) and, where given, period, group id and number; it is modified and not saved."""
    def ExistenceCheck(self, VoucherID: object = ..., nYear: object = ..., Period: object = ..., Group: object = ..., Number: object = ...) -> int:
        """The id of the voucher with that id, or with that year, period, group and number; 0 when there is none or period, group and number are not all given. Calls ExistenceCheck."""
    def GetCurrent(self) -> _core.Voucher:
        """The entity of the row under the cursor. Error 5 behind the last row."""
    def GetLastVchDateThisPeriod(self) -> Any:
        """Empty: a member without a body, kept for programs that call it."""
    def GetNext(self) -> _core.Voucher:
        """The entity of the row under the cursor; then the cursor moves on. Error 5 behind the last row."""
    def NewEnum(self) -> _core.Enumerator:
        """The entities of all rows; the set's cursor stays."""
    def Post(self, VoucherID: int) -> None:
        """Posts a voucher; the server alone decides. Calls Post."""
    def PostAll(self) -> None:
        """Does nothing: a member without a body, kept for programs that call it."""
    def Refresh(self) -> None:
        """Drops the list and fetches it again. Calls GetList."""
    def Remove(self, Key: object = ..., nYear: object = ..., Period: object = ..., Group: object = ..., Number: object = ...) -> None:
        """Deletes the voucher of an id, or, without a key, of a year, period, group and number; the list keeps showing it until Refresh. Error 5 when there is none and for a text key. Calls Delete."""
    def UnPost(self, VoucherID: int) -> None:
        """Takes the posting of a voucher back; the server alone decides. Calls UnPost."""
    def UnPostAll(self) -> None:
        """Does nothing: a member without a body, kept for programs that call it."""
    @property
    def Count(self) -> int:
        """The number of rows. Fetches the list on first use."""
    def Item(self, Key: object = ..., nYear: int = ..., Period: int = ..., Group: str = ..., Number: int = ..., ShowDeleted: bool = ...) -> _core.Voucher:
        """The voucher of an id (a number), read by GetDetail; with any other key or none the voucher of the year, period, group and number, read by GetDetailByNumber. An empty one when the server knows no such voucher."""
    @property
    def RecordSet(self) -> _core.Recordset:
        """The list as it stands, Nothing before the first use; a recordset put here takes its place."""
    @RecordSet.setter
    def RecordSet(self, value: _core.Recordset) -> None: ...
    def SetTransactionContext(self, xa: object, /) -> None: ...
    def __len__(self) -> int: ...
    def __contains__(self, key: object, /) -> bool: ...
    def __getitem__(self, key: Any, /) -> _core.Voucher: ...
    def __iter__(self) -> Iterator[_core.Voucher]: ...

class VoucherTemp(Object):
    """A voucher template."""
    def CancelChanges(self) -> None:
        """Throws the working copy away and takes a new copy of the row as it last came. No server call."""
    def Clone(self) -> _core.VoucherTemp:
        """A copy of the working data with a copy of the baseline, unmodified and without a transaction context. The copy of a saved template saves over the same one."""
    def Construct(self, dict: _core.Dictionary | None | Ref[Any], xa: object) -> None:
        """Makes the template of a row, or an empty one of Nothing; it keeps a copy of the row. One that can't be copied leaves the template as it was. No server call."""
    def Refresh(self) -> None:
        """Reads the object again; does nothing for one that is not saved. All views taken earlier stay with the old data. Calls GetDetail."""
    def ResetModified(self) -> None:
        """Clears the change flags of the object and of everything below it; the data stays."""
    def SaveChanges(self) -> None:
        """Saves a template that is modified, in a line or a detail too, and reads it again. Calls Create or Update, then GetDetail."""
    @property
    def Attachments(self) -> int:
        """The number of attached papers."""
    @Attachments.setter
    def Attachments(self, value: int) -> None: ...
    @property
    def DictOrig(self) -> _core.Dictionary:
        """The baseline that CancelChanges goes back to, Nothing for a new object."""
    @property
    def Entries(self) -> _core.VoucherEntrySet:
        """The lines. Reading them marks nothing modified. Key _Entries."""
    @property
    def GroupID(self) -> int:
        """Id of the voucher group."""
    @GroupID.setter
    def GroupID(self, value: int) -> None: ...
    @property
    def Modified(self) -> bool:
        """Whether the object, a line or a detail was written."""
    @property
    def Name(self) -> str:
        """The template's name."""
    @Name.setter
    def Name(self, value: str) -> None: ...
    @property
    def Properties(self) -> _core.Properties:
        """All keys and values of the object, those without a member of their own included."""
    @property
    def Reference(self) -> str:
        """The reference text."""
    @Reference.setter
    def Reference(self, value: str) -> None: ...
    @property
    def SaveFlag(self) -> str:
        """Carried for the server."""
    @SaveFlag.setter
    def SaveFlag(self, value: str) -> None: ...
    @property
    def TypeID(self) -> int:
        """Carried for the server."""
    @TypeID.setter
    def TypeID(self, value: int) -> None: ...
    @property
    def VoucherID(self) -> int:
        """Id of a voucher; carried for the server."""
    @VoucherID.setter
    def VoucherID(self, value: int) -> None: ...
    @property
    def VoucherTempID(self) -> int:
        """The id of the template; 0 while it is not saved."""
    def SetTransactionContext(self, xa: object, /) -> None: ...

class VoucherTempSet(Object):
    """The list of voucher templates."""
    @property
    def ListOptions(self) -> int:
        """Carried along; no call sends it."""
    @ListOptions.setter
    def ListOptions(self, value: int) -> None: ...
    @property
    def Filter(self) -> str:
        """Filter for the next Refresh."""
    @Filter.setter
    def Filter(self, value: str) -> None: ...
    @property
    def Sort(self) -> str:
        """Sort order for the next Refresh."""
    @Sort.setter
    def Sort(self, value: str) -> None: ...
    def CreateNew(self, Period: object = ..., Group: object = ..., Number: object = ...) -> _core.VoucherTemp:
        """Prepares a new voucher with what is given and always ends in error 13, since a voucher is no template. A new template is a VoucherTemp that is constructed of Nothing."""
    def ExistenceCheck(self, VoucherID: object = ..., Period: object = ..., Group: object = ..., Number: object = ...) -> int:
        """The id of the template with that id, or with that period, group and number when all three are given; 0 when there is none. Calls ExistenceCheck."""
    def GetCurrent(self) -> _core.VoucherTemp:
        """The entity of the row under the cursor. Error 5 behind the last row."""
    def GetNext(self) -> _core.VoucherTemp:
        """The entity of the row under the cursor; then the cursor moves on. Error 5 behind the last row."""
    def NewEnum(self) -> _core.Enumerator:
        """A voucher of each row; the set's cursor stays."""
    def Refresh(self) -> None:
        """Drops the list and fetches it again. Calls GetList."""
    def Remove(self, Key: object = ..., Period: object = ..., Group: object = ..., Number: object = ...) -> None:
        """Deletes the template of an id, or, without a key, of a period, group and number; the list keeps showing it until Refresh. Error 5 when there is none and for a text key. Calls Delete."""
    @property
    def Count(self) -> int:
        """The number of rows. Fetches the list on first use."""
    def Item(self, Key: object = ..., Period: int = ..., Group: str = ..., Number: int = ...) -> _core.VoucherTemp:
        """The template of an id (a number), read by GetDetail; with any other key or none that of the period, group and number, read by GetDetailByNumber. An empty one when the server knows no such template."""
    @property
    def RecordSet(self) -> _core.Recordset:
        """The list as it stands, Nothing before the first use; a recordset put here takes its place."""
    @RecordSet.setter
    def RecordSet(self, value: _core.Recordset) -> None: ...
    def SetTransactionContext(self, xa: object, /) -> None: ...
    def __len__(self) -> int: ...
    def __iter__(self) -> Iterator[_core.VoucherTemp]: ...

class Dictionary(Object, MutableMapping[str, Any]):
    """An ordered map from text keys to values."""
    @property
    def Count(self) -> int:
        """The number of keys."""
    def Name(self, Index: int) -> str:
        """The key at a position from 1. Error 9 outside."""
    def Value(self, Key: str, value: Any = ...) -> Any:
        """The value of a key; Empty for a key that is absent. A write adds or replaces the key."""
    def Lookup(self, Key: str, Value: object = ...) -> bool:
        """True when the key exists. The second argument is accepted and left alone."""
    def ValueOrDefault(self, Key: str, Default: object = ...) -> Any:
        """The value when the key exists, otherwise the default; Empty without a default."""
    def Remove(self, Key: str) -> None:
        """Deletes the key when it exists; marks the Dictionary modified in any case."""
    def Clone(self) -> _core.Dictionary:
        """A shallow copy, unmodified, keys in the same order."""
    def SetTrackState(self, Flag: int) -> None:
        """Leaves the Dictionary unmodified. From then on Modified covers nested containers too (1) or the own keys only (0)."""
    @property
    def Modified(self) -> bool:
        """Whether a key was written or removed since tracking was last set or reset."""
    def ResetModified(self) -> None:
        """Clears the modified state."""
    def Add(self, Key: str, Item: object) -> None:
        """Adds a key with its value. Error 457 when the key is there already."""
    def Exists(self, Key: str) -> bool:
        """True when the key exists."""
    def Items(self) -> _core.Vector:
        """The values in the order of their keys, from index 0."""
    def Keys(self) -> _core.Vector:
        """The keys in order, from index 0."""
    def NewEnum(self) -> _core.Enumerator:
        """The keys in order, as they are now: what is added or removed later changes nothing."""
    def __init__(
        self, rows: object = ..., /, **more: Any
    ) -> None: ...
    def __getitem__(self, key: str) -> Any: ...
    def __setitem__(self, key: str, value: Any) -> None: ...
    def __delitem__(self, key: str) -> None: ...
    def __iter__(self) -> Iterator[str]: ...
    def __len__(self) -> int: ...

class Vector(Object, MutableSequence[Any]):
    """An indexed list of values."""
    @property
    def Count(self) -> int:
        """The number of elements."""
    @property
    def LowerBound(self) -> int:
        """The index of the first element, 1 in a new Vector."""
    @LowerBound.setter
    def LowerBound(self, value: int) -> None: ...
    @property
    def UpperBound(self) -> int:
        """The index of the last element; one below LowerBound while the Vector is empty."""
    def Append(self, Item: object) -> None:
        """Adds an element behind the last one."""
    def Insert(self, Index: int, Item: object) -> None:
        """Puts an element before the one at Index, or behind the last one. Error 9 outside."""
    def Remove(self, Index: int, Count: int = ...) -> None:
        """Removes elements from Index on. Error 9, and nothing is removed, when they are not all there."""
    def Item(self, Index: int, value: Any = ...) -> Any:
        """The element at Index. Error 9 outside."""
    def Clone(self) -> _core.Vector:
        """A shallow copy, unmodified, with the same lower bound."""
    def NewEnum(self) -> _core.Enumerator:
        """The elements in order, by their places: one that is added behind is come to, and when one is removed that was passed, the next is passed over."""
    def __init__(self, values: Iterable[Any] = ..., /) -> None: ...
    def __getitem__(self, index: Any) -> Any: ...
    def __setitem__(self, index: Any, value: Any) -> None: ...
    def __delitem__(self, index: Any) -> None: ...
    def __len__(self) -> int: ...
    def insert(self, index: int, value: Any) -> None: ...

class Collection(Object):
    """A list whose elements are reached by position or by key."""
    def Add(self, Item: object, Key: object = ..., Before: object = ...) -> None:
        """Adds an element at the end, or before the position or key given. Error 457 for a key in use."""
    def Remove(self, Index: object) -> None:
        """Removes the element at a position (error 9 outside) or under a key (error 5 when there is none)."""
    def NewEnum(self) -> _core.Enumerator:
        """The elements in order."""
    @property
    def Count(self) -> int:
        """The number of elements."""
    def Item(self, Index: object) -> Any:
        """The element at a position (error 9 outside) or under a key (error 5 when there is none)."""
    def __len__(self) -> int: ...
    def __contains__(self, key: object, /) -> bool: ...
    def __getitem__(self, key: object, /) -> Any: ...
    def __iter__(self) -> Iterator[Any]: ...

class Recordset(Object):
    """Rows of a list with a cursor."""
    def AddNew(self, FieldList: object = ..., Values: object = ...) -> None:
        """Begins a new row behind the others and makes it the current one, with a value for a field by name or position, or with those of one Vector for the fields of another."""
    def Clone(self, LockType: int = ...) -> _core.Recordset:
        """Another cursor over the same rows, on the first one."""
    def Close(self) -> None:
        """Gives up the rows."""
    def Find(self, Criteria: str) -> None:
        """Moves from the current row on to the first row that meets `Column op literal`, or behind the last row."""
    def MoveFirst(self) -> None:
        """Moves to the first row. Error 3021 when there is none."""
    def MoveNext(self) -> None:
        """Moves to the next row or behind the last one. Error 3021 when behind it already."""
    def Open(self) -> None:
        """Makes a recordset ready for rows, once its fields were appended."""
    def Update(self) -> None:
        """Ends the edit of the current row."""
    @property
    def Bof(self) -> bool:
        """True when the cursor stands before the first row, as it does without rows."""
    @property
    def Eof(self) -> bool:
        """True when the cursor stands behind the last row."""
    @property
    def Fields(self) -> _core.Fields:
        """The columns, with the values of the current row."""
    @property
    def RecordCount(self) -> int:
        """The number of rows."""
    @property
    def State(self) -> int:
        """1 while the recordset is open, 0 while it is closed."""
    def Delete(self, AffectRecords: int = ...) -> None:
        """Takes the current row out, for all clones; there is no current row then until the cursor moves. The argument is 1, for the current row, or error 3001."""
    def GetRows(self, Rows: int = ..., Start: object = ..., Fields: object = ...) -> _core.Vector:
        """The values of so many rows (-1: all) from the current one (or 0), the first (1) or the last (2) on, by field and row from 0 each: a Vector for each of the fields, given by name or position or by a Vector of such, otherwise for all. The cursor moves behind them. Error 3021 without a current row."""
    def MoveLast(self) -> None:
        """Moves to the last row. Error 3021 when there is none."""
    def MovePrevious(self) -> None:
        """Moves to the row before or before the first one. Error 3021 when before it already."""
    def __init__(
        self, columns: Iterable[str] = ..., rows: Iterable[Sequence[Any]] = ...
    ) -> None: ...
    def __iter__(self) -> Iterator[_core.Dictionary]: ...
    def __len__(self) -> int: ...

class Field(Object):
    """A column of a recordset, with its value in the current row."""
    @property
    def Name(self) -> str:
        """The column's name."""
    @property
    def Value(self) -> Any:
        """The value in the current row."""
    @Value.setter
    def Value(self, value: Any) -> None: ...

class Fields(Object):
    """The columns of a recordset."""
    def Append(self, Name: str, Type: int = ..., DefinedSize: int = ..., Attrib: int = ...) -> None:
        """Adds a column to a closed recordset. The columns hold values of any type; type, size and attributes are accepted for the sake of callers that give them."""
    def NewEnum(self) -> _core.Enumerator:
        """The columns in order."""
    @property
    def Count(self) -> int:
        """The number of columns."""
    def Item(self, Index: object) -> _core.Field:
        """A column by name or by position from 0. Error 3265 when there is none."""
    def __len__(self) -> int: ...
    def __contains__(self, key: object, /) -> bool: ...
    def __getitem__(self, key: object, /) -> _core.Field: ...
    def __iter__(self) -> Iterator[_core.Field]: ...

class NotLoggedIn(Refusal):
    """There is no session behind the connection text."""
    NUMBER: ClassVar[int]

class LoginRefused(Refusal):
    """The user or the password is wrong, or the user is disabled."""
    NUMBER: ClassVar[int]

class NotPermitted(Refusal):
    """The user's roles do not allow this."""
    NUMBER: ClassVar[int]

class BadConnectionText(Refusal):
    """The connection text can't be understood."""
    NUMBER: ClassVar[int]

class NoBooks(Refusal):
    """There are no books where the connection text says."""
    NUMBER: ClassVar[int]

class BooksExist(Refusal):
    """There are books already."""
    NUMBER: ClassVar[int]

class WrongSchema(Refusal):
    """The books are of another version than this program."""
    NUMBER: ClassVar[int]

class DatabaseFailed(Refusal):
    """The database reported a failure."""
    NUMBER: ClassVar[int]

class DatabaseBusy(Refusal):
    """Others kept the database busy for too long; try again."""
    NUMBER: ClassVar[int]

class ConnectionLost(Refusal):
    """The connection to the database is lost; try again."""
    NUMBER: ClassVar[int]

class BadBatch(Refusal):
    """A batch is under way already, or there is none to end."""
    NUMBER: ClassVar[int]

class BatchFailed(Refusal):
    """The database has failed in the batch; roll it back."""
    NUMBER: ClassVar[int]

class OutcomeUnknown(Refusal):
    """Whether the change is saved can't be told now."""
    NUMBER: ClassVar[int]

class ReadOnly(Refusal):
    """The books can only be read here."""
    NUMBER: ClassVar[int]

class LoginDelayed(Refusal):
    """Logins have failed; the next one has to wait."""
    NUMBER: ClassVar[int]

class Damaged(Refusal):
    """The file of the books is damaged."""
    NUMBER: ClassVar[int]

class BadFilter(Refusal):
    """The filter text can't be understood."""
    NUMBER: ClassVar[int]

class BadSort(Refusal):
    """The sort text can't be understood."""
    NUMBER: ClassVar[int]

class BadValue(Refusal):
    """A value does not fit its column."""
    NUMBER: ClassVar[int]

class NotFound(Refusal, KeyError):
    """There is no such record."""
    NUMBER: ClassVar[int]

class Changed(Refusal):
    """Somebody else has saved the record in the meantime."""
    NUMBER: ClassVar[int]

class NoVersion(Refusal):
    """The row does not say which version of the record it changes."""
    NUMBER: ClassVar[int]

class NumberTaken(Refusal):
    """Another record has that number."""
    NUMBER: ClassVar[int]

class NameTaken(Refusal):
    """Another record has that name."""
    NUMBER: ClassVar[int]

class Required(Refusal):
    """A value that the record needs is missing."""
    NUMBER: ClassVar[int]

class InUse(Refusal):
    """Other records need this one."""
    NUMBER: ClassVar[int]

class BadReference(Refusal):
    """What a row refers to must exist and be in use."""
    NUMBER: ClassVar[int]

class NoLines(Refusal):
    """A voucher has lines."""
    NUMBER: ClassVar[int]

class NotBalanced(Refusal):
    """Debits and credits of a voucher are equal in base currency."""
    NUMBER: ClassVar[int]

class BadAccount(Refusal):
    """A line's account must exist, be in use and have no sub-accounts."""
    NUMBER: ClassVar[int]

class BadCurrency(Refusal):
    """A line's currency must exist and be in use."""
    NUMBER: ClassVar[int]

class BadSide(Refusal):
    """A line is a debit (1) or a credit (0)."""
    NUMBER: ClassVar[int]

class BadGroup(Refusal):
    """A voucher's group must exist and be in use."""
    NUMBER: ClassVar[int]

class PeriodClosed(Refusal):
    """The period is closed."""
    NUMBER: ClassVar[int]

class WrongPeriod(Refusal):
    """Year and period do not belong to the voucher's date."""
    NUMBER: ClassVar[int]

class VoucherChecked(Refusal):
    """The voucher is checked."""
    NUMBER: ClassVar[int]

class VoucherPosted(Refusal):
    """The voucher is posted."""
    NUMBER: ClassVar[int]

class VoucherDeleted(Refusal):
    """The voucher is deleted."""
    NUMBER: ClassVar[int]

class WrongStep(Refusal):
    """The voucher is not in the state that the step needs."""
    NUMBER: ClassVar[int]

class OwnVoucher(Refusal):
    """Who had a hand in a voucher does not take this step."""
    NUMBER: ClassVar[int]

class TooLarge(Refusal):
    """Amounts, totals or data are beyond what the books hold."""
    NUMBER: ClassVar[int]

class VoucherCashed(Refusal):
    """The voucher is cashed."""
    NUMBER: ClassVar[int]

class BadItem(Refusal):
    """A line names an item of each class that its account asks for."""
    NUMBER: ClassVar[int]

class NoParent(Refusal):
    """The record above is missing."""
    NUMBER: ClassVar[int]

class ParentInUse(Refusal):
    """Vouchers use the record above itself."""
    NUMBER: ClassVar[int]

class HasChildren(Refusal):
    """There are records below this one."""
    NUMBER: ClassVar[int]

class BadNumber(Refusal):
    """The number can't stand as the number of such a record."""
    NUMBER: ClassVar[int]

class UnknownCategory(Refusal):
    """There is no such category of settings."""
    NUMBER: ClassVar[int]

class SettingFixed(Refusal):
    """The setting can't be changed this way."""
    NUMBER: ClassVar[int]

class BadSetting(Refusal):
    """The setting can't have that value."""
    NUMBER: ClassVar[int]

class NotAllPosted(Refusal):
    """The period has vouchers that are not posted."""
    NUMBER: ClassVar[int]

class LaterPostings(Refusal):
    """Vouchers are posted in the period or behind it."""
    NUMBER: ClassVar[int]

class FirstPeriod(Refusal):
    """The books begin with this period."""
    NUMBER: ClassVar[int]

class NotAtRate(Refusal):
    """A line's amount is its foreign amount at its rate."""
    NUMBER: ClassVar[int]

class NegativeAmount(Refusal):
    """The books take no negative amounts."""
    NUMBER: ClassVar[int]

def set_session(props: str, user: str, /) -> Object | None: ...
def restore_session(former: Object | None, /) -> None: ...
def create_object(prog_id: str, /) -> Any: ...
def register_component(prog_id: str, factory: Callable[[], object], /) -> None: ...
def unregister_component(prog_id: str, /) -> None: ...
def lists() -> dict[str, tuple[str, str, str]]: ...
def current_row(rows: Recordset, /) -> Dictionary: ...
def read_table(rows: Recordset, /) -> tuple[list[str], list[tuple[Any, ...]]]: ...

class RecordingServer:
    def __enter__(self) -> RecordingServer: ...
    def __exit__(self, *error: object) -> None: ...
    def Answer(self, component: str, method: str, answer: object, /) -> None: ...
    def AnswerOnce(self, component: str, method: str, answer: object, /) -> None: ...
    def AnswerWith(
        self, component: str, method: str, handler: Callable[..., object], /
    ) -> None: ...
    def FailAt(self, position: int, error: Error, /) -> None: ...
    def LogSession(self, log: bool, /) -> None: ...
    def TakeLog(self) -> str: ...

__all__ = [
    "Object",
    "Enumerator",
    "Property",
    "Properties",
    "Account",
    "AccountSet",
    "Currencyx",
    "CurrencySet",
    "MultiColumn",
    "MultiColumnSet",
    "MultiLedger",
    "MultiLedgerSet",
    "MultiSubColumn",
    "MultiSubColumnSet",
    "CheckType",
    "CheckTypeSet",
    "CustomProperty",
    "CustomPropertySet",
    "WalkCustomPropertySet",
    "Item",
    "ItemSet",
    "ItemClass",
    "ItemClassSet",
    "MeasureUnit",
    "MeasureUnitSet",
    "MeasureUnitGroup",
    "MeasureUnitGroupSet",
    "Payment",
    "PaymentSet",
    "SettAcct",
    "SettAcctSet",
    "SettType",
    "SettTypeSet",
    "SubMes",
    "SubMesSet",
    "SubMesType",
    "SubMesTypeSet",
    "Note",
    "NoteSet",
    "SystemProfile",
    "Voucher",
    "VoucherDetail",
    "VoucherDetailSet",
    "VoucherEntry",
    "VoucherEntrySet",
    "VoucherGroup",
    "VoucherGroupSet",
    "VoucherSet",
    "VoucherTemp",
    "VoucherTempSet",
    "Dictionary",
    "Vector",
    "Collection",
    "Recordset",
    "Field",
    "Fields",
    "NotLoggedIn",
    "LoginRefused",
    "NotPermitted",
    "BadConnectionText",
    "NoBooks",
    "BooksExist",
    "WrongSchema",
    "DatabaseFailed",
    "DatabaseBusy",
    "ConnectionLost",
    "BadBatch",
    "BatchFailed",
    "OutcomeUnknown",
    "ReadOnly",
    "LoginDelayed",
    "Damaged",
    "BadFilter",
    "BadSort",
    "BadValue",
    "NotFound",
    "Changed",
    "NoVersion",
    "NumberTaken",
    "NameTaken",
    "Required",
    "InUse",
    "BadReference",
    "NoLines",
    "NotBalanced",
    "BadAccount",
    "BadCurrency",
    "BadSide",
    "BadGroup",
    "PeriodClosed",
    "WrongPeriod",
    "VoucherChecked",
    "VoucherPosted",
    "VoucherDeleted",
    "WrongStep",
    "OwnVoucher",
    "TooLarge",
    "VoucherCashed",
    "BadItem",
    "NoParent",
    "ParentInUse",
    "HasChildren",
    "BadNumber",
    "UnknownCategory",
    "SettingFixed",
    "BadSetting",
    "NotAllPosted",
    "LaterPostings",
    "FirstPeriod",
    "NotAtRate",
    "NegativeAmount",
]
