-- What is posted adds up; given numbers leave room for those that follow
CREATE TABLE t_Posted (
  FSize INTEGER NOT NULL
);
INSERT INTO t_Posted (FSize)
SELECT CASE WHEN FHigh + FLow / 4294967296 >= 2147483648 THEN 9223372036854775807
  ELSE FHigh * 4294967296 + FLow END
FROM (
  SELECT CAST(COALESCE(SUM(FSize / 4294967296), 0) AS INTEGER) AS FHigh,
    CAST(COALESCE(SUM(FSize % 4294967296), 0) AS INTEGER) AS FLow
  FROM (
    SELECT CASE WHEN FAmount >= FAmountFor AND FAmount >= FQuantity THEN FAmount
      WHEN FAmountFor >= FQuantity THEN FAmountFor ELSE FQuantity END AS FSize
    FROM (
      SELECT ABS(e.FAmount) AS FAmount, ABS(e.FAmountFor) AS FAmountFor,
        CAST(TRUNCATED(ABS(e.FQuantity * 1000000)) AS INTEGER)
          + CASE WHEN ABS(e.FQuantity * 1000000)
            - CAST(TRUNCATED(ABS(e.FQuantity * 1000000)) AS INTEGER) >= 0.5
            THEN 1 ELSE 0 END AS FQuantity
      FROM t_Voucher v JOIN t_VoucherEntry e ON e.FVoucherID = v.FVoucherID WHERE v.FPosted = 1
    ) AS parts
  ) AS sizes
) AS halves;

UPDATE t_Counter SET FNext = 1 + (
  SELECT COALESCE(MAX(v.FNumber), 0) FROM t_Voucher v
  WHERE v.FYear = t_Counter.FYear AND v.FPeriod = t_Counter.FPeriod
  AND v.FGroupID = t_Counter.FGroupID AND v.FNumber <= 999999999
) WHERE FNext > 1000000000;
