-- Sessions that outlast their process
CREATE TABLE t_KeptSession (
  FTicketHash TEXT NOT NULL PRIMARY KEY,
  FUserID INTEGER NOT NULL,
  FMachineName TEXT NOT NULL,
  FEndTime INTEGER NOT NULL
);
