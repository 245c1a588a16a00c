-- Exchange rates by day
CREATE TABLE t_ExchangeRate (
  FRateID IDENTITY,
  FVersion INTEGER NOT NULL,
  FNumber TEXT NOT NULL UNIQUE,
  FName TEXT NOT NULL,
  FCurrencyID INTEGER NOT NULL REFERENCES t_Currency (FCurrencyID),
  FDate TEXT NOT NULL,
  FExchangeRate REAL NOT NULL
);
CREATE INDEX t_ExchangeRate_Day ON t_ExchangeRate (FCurrencyID, FDate, FRateID);
