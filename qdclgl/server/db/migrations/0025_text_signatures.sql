-- What a search for words need not read
-- A row for 64 vouchers that follow each other by id, the first of them FBlock * 64, all of periods
-- up to this one, which is closed: their texts stay as they are. FSignature has a mark for what
-- stands in these texts.
CREATE TABLE t_TextSignature (
  FBlock INTEGER NOT NULL,
  FYear INTEGER NOT NULL,
  FPeriod INTEGER NOT NULL,
  FSignature TEXT NOT NULL,
  PRIMARY KEY (FBlock)
) CLUSTERED;
