module orvane.example/driverinventory

go 1.19
