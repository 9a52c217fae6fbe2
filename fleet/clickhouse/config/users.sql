-- Users of the fleet for servers that have GRANT, which is all since 2020. Replace the passwords.
CREATE SETTINGS PROFILE IF NOT EXISTS fleet_shipper SETTINGS format_csv_delimiter = '\r', format_csv_allow_single_quotes = 0,
  format_csv_allow_double_quotes = 0, format_csv_null_representation = '',
  input_format_csv_detect_header = 0, input_format_csv_trim_whitespaces = 0, distributed_foreground_insert = 1,
  input_format_allow_errors_num = 1000000, input_format_allow_errors_ratio = 1;
CREATE USER IF NOT EXISTS fleet_shipper IDENTIFIED WITH sha256_password BY 'SHIPPER_PASSWORD' SETTINGS PROFILE 'fleet_shipper';
GRANT INSERT ON intake.line TO fleet_shipper;
CREATE SETTINGS PROFILE IF NOT EXISTS fleet_reader SETTINGS readonly = 2, max_execution_time = 120, distributed_product_mode = 'local',
  add_http_cors_header = 1;
CREATE USER IF NOT EXISTS fleet_reader IDENTIFIED WITH sha256_password BY 'READER_PASSWORD' SETTINGS PROFILE 'fleet_reader';
GRANT SELECT ON fleet.* TO fleet_reader;
