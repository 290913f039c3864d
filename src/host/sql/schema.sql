-- Work-order database of the reference host (dlv-host --db). Portable SQL: the same statements
-- create the tables in SQLite and in PostgreSQL. Statements end with ";" at the end of a line;
-- the host runs them one by one.
--
-- Times are text in ISO 8601 form, "YYYY-MM-DD HH:MM" (local time of the units), so that both
-- databases store and compare them alike. The host reads only what the figures and the records
-- behind them need; the other columns are there for the dispatch system that keeps the data.

-- Values the host sends with every refresh: "refresh_interval_minutes" (how often the data are
-- brought up to date, announced as tqDBRefreshInterval), "jeopardy_threshold_minutes"
-- (tqJeopardyThreshold) and "company_name" (the text of the hierarchy's top node).
CREATE TABLE settings (
    name VARCHAR(64) NOT NULL PRIMARY KEY,
    value VARCHAR(256) NOT NULL
);

-- Time formats per language of the control ("EN", "PO", "SP").
CREATE TABLE regional_formats (
    language_code VARCHAR(8) NOT NULL PRIMARY KEY,
    time_format VARCHAR(64) NOT NULL
);

-- The unit tree: parent_id NULL for a top-level unit. Ids must not hold "," or "|", and no two
-- may differ only in letter case.
CREATE TABLE business_units (
    id VARCHAR(64) NOT NULL PRIMARY KEY,
    description VARCHAR(256) NOT NULL,
    parent_id VARCHAR(64) REFERENCES business_units (id)
);

CREATE TABLE job_types (
    code VARCHAR(16) NOT NULL PRIMARY KEY,
    description VARCHAR(128) NOT NULL
);

CREATE TABLE job_classes (
    code VARCHAR(16) NOT NULL PRIMARY KEY,
    description VARCHAR(128) NOT NULL
);

-- Today's roster. Only technicians on duty (on_duty = 1) count. worked_minutes and
-- remaining_minutes are the dispatch system's account of the shift so far and still to come.
CREATE TABLE technicians (
    id VARCHAR(32) NOT NULL PRIMARY KEY,
    name VARCHAR(128) NOT NULL,
    bu_id VARCHAR(64) NOT NULL REFERENCES business_units (id),
    on_duty INTEGER NOT NULL DEFAULT 1 CHECK (on_duty IN (0, 1)),
    shift_start VARCHAR(16),
    shift_end VARCHAR(16),
    worked_minutes INTEGER NOT NULL DEFAULT 0 CHECK (worked_minutes >= 0),
    remaining_minutes INTEGER NOT NULL DEFAULT 0 CHECK (remaining_minutes >= 0)
);
CREATE INDEX technicians_by_unit ON technicians (bu_id);

-- Today's work orders. technician_id NULL: not assigned yet.
CREATE TABLE work_orders (
    id VARCHAR(32) NOT NULL PRIMARY KEY,
    bu_id VARCHAR(64) NOT NULL REFERENCES business_units (id),
    job_type VARCHAR(16) NOT NULL REFERENCES job_types (code),
    job_class VARCHAR(16) NOT NULL REFERENCES job_classes (code),
    status VARCHAR(16) NOT NULL CHECK (status IN ('Open', 'Warning', 'Jeopardy', 'Late',
                                                  'Completed', 'Canceled', 'NotDone')),
    points INTEGER NOT NULL DEFAULT 0 CHECK (points >= 0),
    technician_id VARCHAR(32) REFERENCES technicians (id),
    customer VARCHAR(128),
    address VARCHAR(256),
    created_at VARCHAR(16) NOT NULL,
    due_at VARCHAR(16),
    completed_at VARCHAR(16)
);
CREATE INDEX work_orders_by_unit ON work_orders (bu_id, job_type, job_class);
