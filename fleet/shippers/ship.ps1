<#
.SYNOPSIS
Collects the drivers of this machine and sends them to the fleet's ClickHouse.

.DESCRIPTION
For a scheduled task, see register.ps1. Waits a random time, so that machines do not come all at once; writes what `driverlist collect` says
into a spool folder, one line only when nothing changed since the last whole collection that arrived, unless that is -FullEveryDays ago; sends what is in the folder, oldest first,
with gzip and retries. What cannot be sent stays for the next run. At most -Keep files wait; then the oldest goes.

The password is in the file -PasswordFile, which only SYSTEM and administrators may read.

Run here: the requests, byte for byte, by curl on Linux (ship.sh). The script itself rests on the documentation of Windows PowerShell 5.1
and of the curl.exe that Windows has since 10 1803: no PowerShell was at hand.
#>
[CmdletBinding()]
param(
  [Parameter(Mandatory)] [uri] $Url,
  [string] $User = 'fleet_shipper',
  [string] $Driverlist = "$env:ProgramFiles\driverinfo\bin\driverlist.exe",
  [string] $Folder = "$env:ProgramData\driverinfo\fleet",
  [string] $PasswordFile = "$env:ProgramData\driverinfo\fleet\password.txt",
  [string] $HostId,
  [int] $JitterSeconds = 3600,
  [int] $FullEveryDays = 7,
  [int] $Keep = 30
)
$ErrorActionPreference = 'Stop'
$spool = Join-Path $Folder 'spool'
$digestFile = Join-Path $Folder 'digest.txt'
New-Item -ItemType Directory -Force $spool | Out-Null

if ($JitterSeconds -gt 0) { Start-Sleep -Seconds (Get-Random -Maximum $JitterSeconds) }

# A digest is asked for only when nothing waits: else the server might not yet have the lines that it stands for.
$options = @('collect', '--quiet')
if ($HostId) { $options += '--host-id', $HostId }
$waiting = @(Get-ChildItem $spool -Filter *.jsonl)
if ($waiting.Count -eq 0 -and (Test-Path $digestFile) -and (Get-Item $digestFile).LastWriteTime -gt (Get-Date).AddDays(-$FullEveryDays)) {
  $options += '--unless-digest', (Get-Content $digestFile -Raw).Trim()
}
$name = '{0:yyyyMMddTHHmmssZ}.jsonl' -f [DateTime]::UtcNow
$options += '--output', (Join-Path $spool $name)
& $Driverlist @options
if ($LASTEXITCODE -ne 0) { throw "driverlist ended with $LASTEXITCODE." }

$files = @(Get-ChildItem $spool -Filter *.jsonl | Sort-Object Name)
if ($files.Count -gt $Keep) {
  $files | Select-Object -First ($files.Count - $Keep) | Remove-Item
  $files = $files | Select-Object -Last $Keep
}

function Compress-File([string] $From, [string] $To) {
  $source = [IO.File]::OpenRead($From)
  try {
    $target = [IO.File]::Create($To)
    try {
      $packed = New-Object IO.Compression.GZipStream($target, [IO.Compression.CompressionMode]::Compress)
      try { $source.CopyTo($packed) } finally { $packed.Dispose() }
    } finally { $target.Dispose() }
  } finally { $source.Dispose() }
}

$address = $Url.AbsoluteUri.TrimEnd('/') + '/?query=INSERT%20INTO%20intake.line%20FORMAT%20CSV'
$password = (Get-Content $PasswordFile -Raw).Trim()
$packed = Join-Path $Folder 'sending.gz'
foreach ($file in $files) {
  Compress-File $file.FullName $packed
  # The password comes on standard input: arguments are for everyone to see.
  "user = `"${User}:$password`"" | & "$env:SystemRoot\System32\curl.exe" --config - --silent --show-error --fail --connect-timeout 10 `
    --max-time 300 --retry 3 --header 'Content-Encoding: gzip' --data-binary "@$packed" $address
  if ($LASTEXITCODE -ne 0) { throw "$($file.Name) stays in the spool folder: curl ended with $LASTEXITCODE." }
  $first = Get-Content $file.FullName -TotalCount 1 -Encoding UTF8 | ConvertFrom-Json
  if ($first.digest -and -not $first.unchanged) { Set-Content $digestFile $first.digest -Encoding ASCII }
  Remove-Item $file.FullName
}
Remove-Item $packed -ErrorAction SilentlyContinue
